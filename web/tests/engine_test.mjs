// The package under node, and its files against those of the native library.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { basename, join } from "node:path";
import { test } from "node:test";
import { SITE, corpus, formwork, native, protectedForm, sample, valuesFor } from "./support.mjs";

const openFile = (path, options) => formwork.open(readFileSync(path), options);
const valueOf = (form, name) => form.fields.find((field) => field.name === name).value;

test("values are set, refused with reasons, undone and done again", async () => {
    const form = await openFile(sample("kinds.pdf"));
    const before = form.save();
    form.set("name", "Grace Hopper");
    form.set("name", "Grace");
    form.fill({ agree: true, "address.city": "Zürich" });
    assert.throws(() => form.fill({ name: "lost", postcode: "much too long", reference: "x" }), (error) => {
        assert.ok(error instanceof formwork.FormworkError);
        assert.deepEqual(error.refusals.map(({ name }) => name), ["postcode", "reference"]);
        assert.match(error.refusals[0].why, /8/);
        return error.code === "LIMIT";
    });
    assert.equal(valueOf(form, "name"), "Grace");
    assert.equal(form.undo(), true);
    assert.equal(valueOf(form, "address.city"), "London");
    assert.equal(form.undo(), true);
    assert.equal(form.undo(), false, "two values for one field are one step");
    assert.deepEqual(form.save(), before);
    assert.equal(form.redo() && form.redo(), true);
    assert.equal(form.redo(), false);
    assert.equal(valueOf(form, "name"), "Grace");
    assert.equal(valueOf(form, "address.city"), "Zürich");
    form.close();
    assert.throws(() => form.list(), { code: "BAD_REQUEST" });
});

test("data go out and come back in each format", async () => {
    for (const format of ["json", "csv", "fdf", "xfdf"]) {
        const [from, to] = [await openFile(sample("kinds.pdf")), await openFile(sample("kinds.pdf"))];
        from.fill({ name: "Emmy Noether", meal: "Lunch", toppings: ["mu"] });
        to.import(format, from.export(format), { force: true });
        assert.deepEqual(to.fields.map(({ value }) => value), from.fields.map(({ value }) => value), format);
        assert.deepEqual(Object.keys(JSON.parse(to.export("json", { fields: ["name"] }))), ["name"]);
    }
});

test("what can't be opened says why", async () => {
    const locked = protectedForm();
    await assert.rejects(openFile(locked), { code: "ENCRYPTED" });
    await assert.rejects(openFile(locked, { password: "wrong" }), { code: "ENCRYPTED" });
    assert.equal((await openFile(locked, { password: "secret" })).facts.isEncrypted, true);
    await assert.rejects(formwork.open(new TextEncoder().encode("no PDF file")), { code: "NOT_PDF" });
    await assert.rejects(formwork.open(new Uint8Array(2 ** 31 - 2 ** 20)), { code: "NO_MEMORY" });
});

test("where memory runs out the call says so, and other forms open", async () => {
    const { Instance } = await import(join(SITE, "lib/instance.mjs"));
    const bytes = readFileSync(sample("kinds.pdf"));
    for (const left of [0, 2 ** 12, 2 ** 16]) {
        const instance = await Instance.create(await formwork.load());
        assert.throws(() => instance.run((memory, engine) => {
            const [at, form, reserve] = [memory.room(8), memory.bytes(bytes), engine.malloc(left)];
            for (let size = 2 ** 28; size >= 16; size /= 2)
                while (engine.malloc(size));
            engine.free(reserve);
            instance.check(engine.fw_open_bytes(form, bytes.length, 0, at));
            instance.check(engine.fw_list_json(memory.pointer(at), 0, at, at + 4));
        }), { code: "NO_MEMORY" }, `${left} bytes`);
    }
    (await openFile(sample("kinds.pdf"))).close();
});

test("what is not there in a browser is said", async () => {
    const form = await openFile(sample("kinds.pdf"));
    form.set("name", "漢字");
    form.save();
    assert.match(form.notes.join("\n"), /"name" can't be shown whole.*does without the fonts of the machine/);
});

// The values that a form takes and that its own fonts show; null where it takes none.
async function values(path) {
    for (const left = valuesFor(await openFile(path)); ;) {
        const form = await openFile(path);
        try {
            form.fill(left);
        } catch {
            return null;
        }
        form.save();
        const unshown = form.notes.map((note) => note.match(/field "(.*)" can't be shown whole/)?.[1]).filter(Boolean);
        if (unshown.length === 0)
            return left;
        unshown.forEach((name) => delete left[name]);
    }
}

test("saved files are those of the native library, byte for byte", async (context) => {
    let same = 0;
    for (const path of [sample("kinds.pdf"), sample("object-streams.pdf"), sample("updates.pdf"), sample("xfa.pdf"), ...corpus()]) {
        await context.test(basename(path), async () => {
            const form = await openFile(path).catch((error) => error);
            const filled = form instanceof Error ? null : await values(path);
            if (!filled) {
                assert.notEqual(native(path, {}).code, 0, `native fills it: ${form.message}`);
                return;
            }
            form.fill(filled);
            const theirs = native(path, filled);
            assert.equal(theirs.code, 0);
            assert.equal(Buffer.compare(form.save(), theirs.bytes), 0, `${Object.keys(filled).length} values`);
            ++same;
        });
    }
    context.diagnostic(`${same} files are the same`);
});
