// Forms of PDF files: opened from bytes, filled, and saved to bytes. Works in browsers, in workers and in node.
import { FormworkError } from "./lib/errors.mjs";
import { History } from "./lib/history.mjs";
import { HANDLE, Instance, POINTER } from "./lib/instance.mjs";

export { FormworkError };

const FORCE = 1;
const CHECK_ONLY = 2;
const GUESS = 4;
const ALL_FIELDS = 8;
const SHOWN = 16;
const IGNORE_UNKNOWN = 32;
const UPDATE_ONLY = 64;

const FORMATS = { json: 0, csv: 1, fdf: 2, xfdf: 3, url: 4, xml: 5, xfa: 6 };
const FACTS = ["hasForm", "hasXfa", "hasOnlyXfa", "isSigned", "isEncrypted", "permitsFilling", "permitsEditing", "wasRepaired"];
const OPTIONS = { scripts: 0, draw: 2, writeXfa: 3 };

const encoder = new TextEncoder();
const decoder = new TextDecoder();

// What `new URL(..., import.meta.url)` names, compiled once.
let compiled = null;

async function read(source) {
    if (source instanceof WebAssembly.Module)
        return source;
    if (source instanceof URL && source.protocol === "file:")
        return WebAssembly.compile(await (await import("node:fs/promises")).readFile(source));
    if (source instanceof ArrayBuffer || ArrayBuffer.isView(source))
        return WebAssembly.compile(source);
    const response = await fetch(source);
    if (!response.ok)
        throw new FormworkError("NOT_FOUND", `the engine ${source} can't be loaded: ${response.status}`);
    return WebAssembly.compile(await response.arrayBuffer());
}

// Loads the engine, which open does otherwise: from its bytes, a URL or a compiled module; null means beside this file.
export async function load(source = null) {
    compiled = read(source ?? new URL("formwork.wasm", import.meta.url));
    compiled.catch(() => {
        compiled = null;
    });
    return compiled;
}

// Opens a PDF file. Each form has an engine of its own, so that what goes wrong with one of them leaves the others alone.
export async function open(bytes, { password = null } = {}) {
    const instance = await Instance.create(await (compiled ?? load()));
    const content = bytes instanceof Uint8Array ? bytes : new Uint8Array(bytes);
    return new Form(instance, openDocument(instance, content, password));
}

function openDocument(instance, bytes, password) {
    return instance.run((memory, engine) => {
        // struct_size, password, borrow, no_repair: the engine reads the bytes where they are.
        const options = memory.pointers([4 * POINTER, memory.text(password), 1, 0]);
        const at = memory.room(POINTER);
        instance.check(engine.fw_open_bytes(memory.keep(bytes), bytes.length, options, at));
        return memory.pointer(at);
    });
}

function formatNumber(format) {
    if (!Object.hasOwn(FORMATS, format))
        throw new FormworkError("BAD_ARGUMENT", `there is no format "${format}": ${Object.keys(FORMATS).join(", ")}`);
    return FORMATS[format];
}

function fillFlags({ force, checkOnly, ignoreUnknown } = {}) {
    return (force ? FORCE : 0) | (checkOnly ? CHECK_ONLY : 0) | (ignoreUnknown ? IGNORE_UNKNOWN : 0);
}

// An open form; formwork.d.ts says what its operations do.
export class Form {
    #instance;
    #document;
    #history = new History();
    #fields = null;

    constructor(instance, document) {
        this.#instance = instance;
        this.#document = document;
    }

    get fields() {
        return (this.#fields ??= this.list());
    }

    list(options = {}) {
        return JSON.parse(decoder.decode(this.listBytes(options)));
    }

    listBytes({ all = false } = {}) {
        return this.#bytes((engine, at, size) => engine.fw_list_json(this.#document, all ? ALL_FIELDS : 0, at, size));
    }

    summary() {
        return JSON.parse(decoder.decode(this.#bytes((engine, at, size) => engine.fw_summary_json(this.#document, at, size))));
    }

    get facts() {
        return this.#run((memory, engine) => {
            const at = memory.room(POINTER);
            const facts = {};
            FACTS.forEach((name, number) => {
                this.#instance.check(engine.fw_has(this.#document, number, at));
                facts[name] = memory.pointer(at) !== 0;
            });
            return facts;
        });
    }

    get notes() {
        return this.#run((memory, engine) => {
            const at = memory.room(POINTER);
            const notes = [];
            for (let index = 0; ; ++index) {
                this.#instance.check(engine.fw_note(this.#document, index, at));
                if (!memory.pointer(at))
                    return notes;
                notes.push(this.#instance.text(memory.pointer(at)));
            }
        });
    }

    set(name, value, options = {}) {
        return this.fill({ [name]: value }, options);
    }

    fill(values, options = {}) {
        const work = () => this.#fill("json", JSON.stringify(values), options);
        const report = work();
        const isPlain = !options.force && !options.ignoreUnknown;
        if (!options.checkOnly)
            this.#history.add(isPlain ? { values: { ...values } } : { work });
        return report;
    }

    import(format, data, options = {}) {
        const report = this.#fill(format, data, options);
        if (!options.checkOnly)
            this.#history.add({ work: () => this.#fill(format, data, options) });
        return report;
    }

    export(format, { fields = [], shown = false } = {}) {
        return this.#run((memory, engine) => {
            const [at, size] = [memory.room(POINTER), memory.room(POINTER)];
            const handles = memory.handles(fields.map((name) => this.#find(memory, engine, name)));
            const flags = shown ? SHOWN : 0;
            this.#instance.check(
                engine.fw_export(this.#document, formatNumber(format), handles, fields.length, flags, at, size));
            return format === "fdf" ? memory.take(at, size) : memory.takeText(at, size);
        });
    }

    reset(fields = [], { force = false } = {}) {
        const work = () => this.#change((memory, engine) => {
            const handles = memory.handles(fields.map((name) => this.#find(memory, engine, name)));
            return engine.fw_reset(this.#document, handles, fields.length, force ? FORCE : 0);
        });
        work();
        this.#history.add({ work });
    }

    calculate() {
        const work = () => this.#change((memory, engine) => engine.fw_calculate(this.#document));
        work();
        this.#history.add({ work });
    }

    flatten({ force = false } = {}) {
        const work = () => this.#change((memory, engine) => engine.fw_flatten(this.#document, force ? FORCE : 0));
        work();
        this.#history.add({ work });
    }

    revert() {
        this.#revert();
        this.#history = new History();
    }

    get canUndo() {
        return this.#history.done.length > 0;
    }

    get canRedo() {
        return this.#history.undone.length > 0;
    }

    undo() {
        if (!this.#history.back())
            return false;
        this.#revert();
        this.#history.replay().forEach((step) => this.#repeat(step));
        return true;
    }

    redo() {
        const step = this.#history.forth();
        if (step)
            this.#repeat(step);
        return step !== null;
    }

    setOption(name, value) {
        if (!Object.hasOwn(OPTIONS, name))
            throw new FormworkError("BAD_ARGUMENT", `there is no option "${name}": ${Object.keys(OPTIONS).join(", ")}`);
        this.#change((memory, engine) => engine.fw_set_option(this.#document, OPTIONS[name], Number(value)));
    }

    save({ updateOnly = false } = {}) {
        return this.#bytes((engine, at, size) => engine.fw_save_bytes(this.#document, updateOnly ? UPDATE_ONLY : 0, at, size));
    }

    close() {
        this.#instance = null;
        this.#fields = null;
    }

    #run(work) {
        if (!this.#instance)
            throw new FormworkError("BAD_REQUEST", "the form is closed");
        return this.#instance.run(work);
    }

    #change(work) {
        this.#fields = null;
        this.#run((memory, engine) => this.#instance.check(work(memory, engine)));
    }

    #revert() {
        this.#change((memory, engine) => engine.fw_revert(this.#document));
    }

    #repeat(step) {
        if (step.values)
            this.#fill("json", JSON.stringify(step.values), {});
        else
            step.work();
    }

    // What a function hands out.
    #bytes(call) {
        return this.#run((memory, engine) => {
            const [at, size] = [memory.room(POINTER), memory.room(POINTER)];
            this.#instance.check(call(engine, at, size));
            return memory.take(at, size);
        });
    }

    #fill(format, data, options) {
        const bytes = typeof data === "string" ? encoder.encode(data) : data;
        this.#fields = null;
        return this.#run((memory, engine) => {
            const [at, size] = [memory.room(POINTER), memory.room(POINTER)];
            const code = engine.fw_fill(this.#document, formatNumber(format), memory.bytes(bytes), bytes.length,
                                        fillFlags(options), at, size);
            const report = JSON.parse(memory.takeText(at, size) ?? "[]");
            this.#instance.check(code, report.filter(({ result }) => result === "refused").map(({ name, why }) => ({ name, why })));
            return report;
        });
    }

    #find(memory, engine, name) {
        const at = memory.room(HANDLE);
        this.#instance.check(engine.fw_find_field(this.#document, memory.text(name), GUESS, at));
        return memory.handle(at);
    }
}
