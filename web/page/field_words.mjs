// What a field is, in words.

const KINDS = {
    text: "text", check: "check box", radio: "choice of one", combo: "list to choose from", list: "list", push: "button",
    signature: "signature", data: "XFA data",
};
const MULTILINE = 1 << 12;
const PASSWORD = 1 << 13;
const EDITABLE = 1 << 18;
const MULTI_SELECT = 1 << 21;

export const isMultiline = (field) => field.kind === "text" && (field.flags & MULTILINE) !== 0;
export const isPassword = (field) => field.kind === "text" && (field.flags & PASSWORD) !== 0;
export const isEditable = (field) => field.kind === "combo" && (field.flags & EDITABLE) !== 0;
export const takesSeveral = (field) => field.kind === "list" && (field.flags & MULTI_SELECT) !== 0;

// Whether the field has a control that the tab key stops at: one that can't be changed does where it is typed into.
export const takesFocus = (field) =>
    field.kind !== "signature" && (!field.readOnly || ["text", "data"].includes(field.kind) || isEditable(field));

export const labelOf = (field) => field.label || field.name;

export function wordsOf(field) {
    const words = [KINDS[field.kind] ?? field.kind];
    if (field.label)
        words.unshift(field.name);
    if (field.required)
        words.push("required");
    if (field.readOnly)
        words.push("read-only");
    if (field.maxLength)
        words.push(`at most ${field.maxLength} characters`);
    if (field.kind === "signature")
        words.push(field.signed ? "signed" : "not signed");
    if (field.page)
        words.push(`page ${field.page}`);
    return words.join(" · ");
}

// The choices of a group of buttons: what is set, and what it is called.
export const statesOf = (field) => [...new Set(field.states ?? [])].map((state) => ({
    value: state, text: field.exportValues?.[field.states.indexOf(state)] || state,
}));

// Whether a search finds the field; `words` is in lower case.
export const matches = (field, words) =>
    `${field.name}\n${field.label ?? ""}\n${field.value ?? ""}`.toLowerCase().includes(words);
