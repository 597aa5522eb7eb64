// The engine as the page calls it: every method of the worker as a function with a promise.
import { startWorker } from "./start_worker.mjs";

const decoder = new TextDecoder();

export class EngineError extends Error {
    constructor({ code, message, refusals }) {
        super(message);
        this.code = code;
        this.refusals = refusals;
    }
}

export function startEngine() {
    const worker = startWorker("page/worker.mjs");
    const waiting = new Map();
    let calls = 0;
    worker.onmessage = ({ data: { id, result, error } }) => {
        const { resolve, reject } = waiting.get(id);
        waiting.delete(id);
        if (error)
            return reject(new EngineError(error));
        if (result?.fields)
            result.fields = JSON.parse(decoder.decode(result.fields));
        resolve(result);
    };
    worker.onerror = (event) => {
        for (const { reject } of waiting.values())
            reject(new EngineError({ code: "INTERNAL", message: event.message || "the engine can't be started", refusals: [] }));
        waiting.clear();
    };
    return new Proxy({}, {
        get: (_target, method) => (...args) => new Promise((resolve, reject) => {
            waiting.set(++calls, { resolve, reject });
            worker.postMessage({ id: calls, method, args });
        }),
    });
}
