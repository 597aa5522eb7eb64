// What the tests share: forms, values to fill in, and what the native library makes of them.
import { execFileSync, spawnSync } from "node:child_process";
import { existsSync, mkdirSync, readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

const ROOT = fileURLToPath(new URL("../../", import.meta.url));

export const OUT = process.env.FORMWORK_WEB_OUT ?? join(ROOT, "build/web");
export const SITE = join(OUT, "site");
export const SHOTS = join(OUT, "shots");
export const WORK = join(OUT, "work");
mkdirSync(WORK, { recursive: true });
mkdirSync(SHOTS, { recursive: true });

export const sample = (name) => join(ROOT, "samples", name);

// The real files, where they are there.
const CORPUS = process.env.FORMWORK_CORPUS ?? "";
export const corpus = () => (existsSync(CORPUS) ? readdirSync(CORPUS) : [])
    .filter((name) => name.endsWith(".pdf")).map((name) => join(CORPUS, name));
export const real = (name) => (existsSync(join(CORPUS, name)) ? join(CORPUS, name) : null);

export const formwork = await import(join(SITE, "formwork.mjs"));

// A form with a password, and one of many fields.
export function protectedForm() {
    const path = join(WORK, "protected.pdf");
    execFileSync("qpdf", ["--encrypt", "secret", "owner", "128", "--use-aes=y", "--", sample("kinds.pdf"), path]);
    return path;
}

export function largeForm(count = 10000) {
    const path = join(WORK, `fields-${count}.pdf`);
    if (!existsSync(path))
        execFileSync(join(OUT, "make_form"), [String(count), path]);
    return path;
}

// Fills and saves with the native library: {code, bytes, times}.
export function native(path, values, { times = 1 } = {}) {
    const [data, output] = [join(WORK, "data.json"), join(WORK, "native.pdf")];
    writeFileSync(data, JSON.stringify(values));
    const run = spawnSync(join(OUT, "native"), [path, data, output, String(times)], { encoding: "utf8" });
    return { code: run.status, bytes: run.status === 0 ? readFileSync(output) : null, times: JSON.parse(run.stdout || "{}") };
}

const TEXT = "Zoë 1,5 & more";

function valueFor(field) {
    switch (field.kind) {
    case "text":
        return TEXT.slice(0, field.maxLength ?? TEXT.length);
    case "check":
    case "radio":
        return field.states.at(-1);
    case "combo":
    case "list":
        return field.options.at(-1)?.value;
    default:
        return undefined;
    }
}

// A value for every field that takes one.
export function valuesFor(form) {
    const values = {};
    for (const field of form.list()) {
        const value = field.readOnly ? undefined : valueFor(field);
        if (value !== undefined && value !== null)
            values[field.name] = value;
    }
    try {
        form.fill(values, { checkOnly: true });
    } catch (error) {
        error.refusals.forEach(({ name }) => delete values[name]);
    }
    return values;
}
