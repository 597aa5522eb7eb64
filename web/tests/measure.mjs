// Prints the sizes of what browsers load, and what listing and filling take beside the native library. Exits 1 where a bound is
// exceeded.
import { readFileSync } from "node:fs";
import { basename, join } from "node:path";
import { gzipSync } from "node:zlib";
import { SITE, formwork, largeForm, native, real, sample, valuesFor } from "./support.mjs";

const WASM_BOUND = 200 * 1024;
const TIME_BOUND = 2;
const TIMES = 15;

function packed(...names) {
    const sizes = names.map((name) => gzipSync(readFileSync(join(SITE, name)), { level: 9 }).length);
    return sizes.reduce((sum, size) => sum + size);
}

async function least(work) {
    let least = Infinity;
    for (let i = 0; i < TIMES; ++i) {
        const began = process.cpuUsage();
        await work();
        const { user, system } = process.cpuUsage(began);
        least = Math.min(least, (user + system) / 1000);
    }
    return least;
}

async function timesOf(bytes, values) {
    const list = await least(async () => {
        const form = await formwork.open(bytes);
        form.list();
        form.close();
    });
    const fill = await least(async () => {
        const form = await formwork.open(bytes);
        form.fill(values);
        form.save();
        form.close();
    });
    return { list, fill };
}

let exceeded = false;
function bound(value, limit) {
    exceeded ||= value > limit;
    return value > limit ? "  EXCEEDS ITS BOUND" : "";
}

const wasm = packed("formwork.wasm");
const kilobytes = (size) => `${(size / 1024).toFixed(1)} KB gzipped`;
console.log(`formwork.wasm: ${kilobytes(wasm)}${bound(wasm, WASM_BOUND)}`);
const scripts = packed("formwork.mjs", "lib/errors.mjs", "lib/history.mjs", "lib/instance.mjs");
console.log(`formwork.mjs and what it imports: ${kilobytes(scripts)}`);

for (const path of [real("prefilled_f1040.pdf") ?? sample("kinds.pdf"), largeForm(1000), largeForm()]) {
    const bytes = readFileSync(path);
    const values = valuesFor(await formwork.open(bytes));
    const ours = await timesOf(bytes, values);
    const theirs = native(path, values, { times: TIMES }).times;
    for (const what of ["list", "fill"]) {
        const ratio = ours[what] / theirs[what];
        console.log(`${basename(path)}: open and ${what} ${ours[what].toFixed(1)} ms, native ${theirs[what].toFixed(1)} ms, `
            + `ratio ${ratio.toFixed(2)}${bound(ratio, TIME_BOUND)}`);
    }
}
process.exit(exceeded ? 1 : 0);
