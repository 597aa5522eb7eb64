// One field of the list: its words, the control that fits its kind, and what is wrong with what is typed.
import { isEditable, isMultiline, isPassword, labelOf, statesOf, takesSeveral, wordsOf } from "./field_words.mjs";

const MANY_STATES = 6;
const CHECK_DELAY = 150;  // milliseconds after the last key

let ids = 0;

function element(tag, properties = {}, ...children) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...children);
    return made;
}

// A control has its element, `read` and `show` for the value, and whether it is one that is typed into.
function textControl(field, id) {
    const multiline = isMultiline(field);
    const input = multiline
        ? element("textarea", { id, rows: 3 })
        : element("input", { id, type: isPassword(field) ? "password" : "text", autocomplete: "off" });
    input.readOnly = field.readOnly;
    input.spellcheck = multiline;
    return {
        element: input, typed: true, read: () => input.value,
        show: (value) => { input.value = (value ?? "").replaceAll("\r\n", "\n").replaceAll("\r", "\n"); },
    };
}

function editableControl(field, id) {
    const control = textControl(field, id);
    const options = element("datalist", { id: `${id}-options` });
    options.append(...field.options.map(({ text }) => element("option", { value: text })));
    control.element.setAttribute("list", options.id);
    const texts = new Map(field.options.map(({ value, text }) => [value, text]));
    return { ...control, beside: options, show: (value) => control.show(texts.get(value) ?? value) };
}

function selectControl(id, choices, field, several) {
    const select = element("select", { id, disabled: field.readOnly, multiple: several });
    if (several)
        select.size = Math.min(Math.max(choices.length, 2), 5);
    if (!several && !choices.some(({ value }) => value === ""))
        choices = [{ value: "", text: "none" }, ...choices];
    select.append(...choices.map(({ value, text }) => element("option", { value, textContent: text })));
    return {
        element: select,
        read: () => several ? [...select.selectedOptions].map(({ value }) => value) : select.value,
        show(value) {
            const chosen = [value].flat();
            for (const option of select.options)
                option.selected = value === null ? option.value === "" : chosen.includes(option.value);
        },
    };
}

function checkControl(field, id) {
    const input = element("input", { id, type: "checkbox", disabled: field.readOnly });
    return { element: input, read: () => input.checked, show: (value) => { input.checked = value !== null && value !== "Off"; } };
}

function radioControl(field, id, states) {
    const inputs = states.map(({ value }, at) =>
        element("input", { type: "radio", name: id, id: `${id}-${at}`, value, disabled: field.readOnly }));
    const box = element("div", { id });
    box.append(...inputs.map((input, at) =>
        element("label", { className: "choice", htmlFor: input.id }, input, states[at].text)));
    return {
        element: box, isGroup: true,
        read: () => inputs.find(({ checked }) => checked)?.value ?? "Off",
        show: (value) => inputs.forEach((input) => { input.checked = input.value === value; }),
    };
}

function stateControl(field, id) {
    const states = statesOf(field);
    if (field.kind === "check" && states.length <= 1)
        return checkControl(field, id);
    const choices = [{ value: "Off", text: "none" }, ...states];
    return states.length > MANY_STATES ? selectControl(id, choices, field, false) : radioControl(field, id, choices);
}

function controlOf(field, id) {
    switch (field.kind) {
    case "text":
        return textControl(field, id);
    case "check":
    case "radio":
        return stateControl(field, id);
    case "combo":
        return isEditable(field) ? editableControl(field, id)
            : selectControl(id, field.options.map(({ value, text }) => ({ value, text })), field, false);
    case "list":
        return selectControl(id, field.options.map(({ value, text }) => ({ value, text })), field, takesSeveral(field));
    default:
        return null;
    }
}

function heading(field, id, control) {
    const words = { className: "label", textContent: labelOf(field) };
    if (!control)
        return element("p", words);
    if (control.isGroup)
        return element("p", { ...words, id: `${id}-label` });
    return element("label", { ...words, htmlFor: id });
}

function describe(control, id) {
    const target = control.element;
    target.setAttribute("aria-describedby", `${id}-about ${id}-problem`);
    if (!control.isGroup)
        return;
    target.setAttribute("role", "radiogroup");
    target.setAttribute("aria-labelledby", `${id}-label`);
}

// The row of a field. `actions` has check(name, value), which answers a sentence or "", set(field, value), and focused(field).
export function fieldRow(field, problem, actions) {
    const id = `field-${++ids}`;
    const control = controlOf(field, id);
    const about = element("p", { className: "about", id: `${id}-about`, textContent: wordsOf(field) });
    const wrong = element("p", { className: "problem", id: `${id}-problem` });
    const row = element("li", { className: "field" }, heading(field, id, control), about);
    if (control)
        row.append(control.element, ...(control.beside ? [control.beside] : []), wrong);
    let shown;

    // What is typed stays while the value is the same, unless it is to be shown anew.
    function show(now, sentence, anew = false) {
        if (control && (anew || JSON.stringify(now.value) !== shown)) {
            control.show(now.value);
            shown = JSON.stringify(now.value);
        }
        complain(sentence);
    }

    function complain(sentence) {
        wrong.textContent = sentence ?? "";
        row.classList.toggle("refused", Boolean(sentence));
        control?.element.setAttribute("aria-invalid", Boolean(sentence));
    }

    if (control) {
        describe(control, id);
        listen(row, control, field, { ...actions, complain });
    }
    show(field, problem);
    const focus = () => (control?.isGroup ? row.querySelector("input:checked, input") : control?.element)?.focus();
    return { element: row, show, focus };
}

function listen(row, control, field, actions) {
    let timer = 0;
    row.addEventListener("focusin", () => actions.focused(field));
    row.addEventListener("input", () => {
        clearTimeout(timer);
        if (control.typed)
            timer = setTimeout(async () => actions.complain(await actions.check(field.name, control.read())), CHECK_DELAY);
    });
    row.addEventListener("change", () => {
        clearTimeout(timer);
        actions.set(field, control.read());
    });
}
