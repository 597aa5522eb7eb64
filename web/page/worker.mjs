// The engine, away from the thread of the page: answers {id, method, args} with {id, result} or {id, error}.
import * as formwork from "../formwork.mjs";

let form = null;

// What the page shows besides the fields.
function state() {
    return { canUndo: form.canUndo, canRedo: form.canRedo, notes: form.notes };
}

function everything() {
    return { ...state(), fields: form.listBytes() };
}

// Bytes are handed over, not copied.
function bytesOf(result) {
    return [result, result?.fields].filter((part) => part instanceof Uint8Array).map(({ buffer }) => buffer);
}

const METHODS = {
    async open(bytes, password) {
        const opened = await formwork.open(bytes, { password });
        form?.close();
        form = opened;
        return { ...everything(), facts: form.facts };
    },
    check: (name, value) => form.set(name, value, { checkOnly: true }),
    set: (name, value) => ({ report: form.set(name, value), ...state() }),
    import: (format, data) => ({ report: form.import(format, data), ...everything() }),
    export: (format) => form.export(format),
    undo: () => (form.undo(), everything()),
    redo: () => (form.redo(), everything()),
    save: () => form.save(),
};

async function answer({ id, method, args }) {
    try {
        const result = await METHODS[method](...args);
        postMessage({ id, result }, bytesOf(result));
    } catch (error) {
        postMessage({ id, error: { code: error.code ?? "INTERNAL", message: error.message, refusals: error.refusals ?? [] } });
    }
}

// One after the other: opening takes time.
let last = formwork.load().catch(() => {});
onmessage = ({ data }) => {
    last = last.then(() => answer(data));
};
