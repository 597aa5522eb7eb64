// One instance of the engine: its memory, and calls that take and give texts and bytes.
import { FormworkError, codeName } from "./errors.mjs";

const POINTER_SIZE = 4;
const NOT_SUPPORTED = 52;

const encoder = new TextEncoder();
const decoder = new TextDecoder();

// The engine reads a clock and nothing else of the system. Whatever else it is linked with answers that it is not there.
function importsOf(module, memory) {
    const view = () => new DataView(memory().buffer);
    const known = {
        clock_time_get(_id, _precision, at) {
            view().setBigUint64(at, BigInt(Date.now()) * 1000000n, true);
            return 0;
        },
        environ_sizes_get(count, size) {
            view().setUint32(count, 0, true);
            view().setUint32(size, 0, true);
            return 0;
        },
        environ_get: () => 0,
        emscripten_notify_memory_growth: () => {},
        proc_exit: () => {
            throw new Error("the engine ended");
        },
    };
    const imports = {};
    for (const { module: space, name, kind } of WebAssembly.Module.imports(module)) {
        if (kind === "function")
            (imports[space] ??= {})[name] = known[name] ?? (() => (space === "env" ? -NOT_SUPPORTED : NOT_SUPPORTED));
    }
    return imports;
}

export class Instance {
    static async create(module) {
        const made = new Instance();
        const instance = await WebAssembly.instantiate(module, importsOf(module, () => made.exports.memory));
        made.exports = instance.exports;
        made.exports._initialize?.();
        return made;
    }

    // Calls `work` with an object that hands out memory, which is given back afterwards. Where the engine itself breaks down, which
    // it does where memory runs out in a place that can't tell it, nothing can be done with this instance any more.
    run(work) {
        if (this.broken)
            throw new FormworkError("INTERNAL", "the form was lost when an earlier operation failed: open it again");
        const memory = new Memory(this.exports);
        try {
            const result = work(memory, this.exports);
            memory.release();
            return result;
        } catch (error) {
            if (error instanceof FormworkError) {
                memory.release();
                throw error;
            }
            this.broken = true;
            throw new FormworkError("NO_MEMORY", `the engine broke down, most likely because memory ran out (${error.message})`);
        }
    }

    // Throws what a function answered unless it is success.
    check(code, refusals) {
        if (code !== 0)
            throw new FormworkError(codeName(code), this.text(this.exports.fw_error()), refusals);
    }

    // The text at an address; null for none.
    text(at) {
        if (!at)
            return null;
        const bytes = new Uint8Array(this.exports.memory.buffer);
        return decoder.decode(bytes.subarray(at, bytes.indexOf(0, at)));
    }
}

// Blocks of the engine's memory for the time of one call.
class Memory {
    constructor(exports) {
        this.exports = exports;
        this.blocks = [];
    }

    // Room for `size` bytes, zeros.
    room(size) {
        const at = this.#allocate(size);
        this.blocks.push(at);
        new Uint8Array(this.exports.memory.buffer, at, size).fill(0);
        return at;
    }

    bytes(from) {
        const at = this.keep(from);
        this.blocks.push(at);
        return at;
    }

    // The same, but the bytes stay as long as the instance.
    keep(from) {
        const at = this.#allocate(from.length);
        new Uint8Array(this.exports.memory.buffer, at, from.length).set(from);
        return at;
    }

    #allocate(size) {
        const at = this.exports.malloc(Math.max(size, 1)) >>> 0;
        if (!at)
            throw new FormworkError("NO_MEMORY", "there is not enough memory");
        return at;
    }

    // A text with its zero; null stays null.
    text(from) {
        return from === null || from === undefined ? 0 : this.bytes(encoder.encode(`${from}\0`));
    }

    pointers(addresses) {
        return this.bytes(new Uint8Array(Uint32Array.from(addresses).buffer));
    }

    handles(fields) {
        return this.bytes(new Uint8Array(BigUint64Array.from(fields).buffer));
    }

    // What a function put where it was told to.
    pointer(at) {
        return new DataView(this.exports.memory.buffer).getUint32(at, true);
    }

    handle(at) {
        return new DataView(this.exports.memory.buffer).getBigUint64(at, true);
    }

    // Takes over a block that the engine handed out: a copy of its bytes.
    take(at, sizeAt) {
        const from = this.pointer(at);
        const bytes = new Uint8Array(this.exports.memory.buffer, from, this.pointer(sizeAt)).slice();
        this.exports.fw_free(from);
        return bytes;
    }

    takeText(at, sizeAt) {
        return this.pointer(at) ? decoder.decode(this.take(at, sizeAt)) : null;
    }

    release() {
        for (const at of this.blocks.splice(0))
            this.exports.free(at);
    }
}

export const POINTER = POINTER_SIZE;
export const HANDLE = 8;
