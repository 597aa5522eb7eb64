// The page in Chromium: what people do with it, at two widths, with the mouse and with the keyboard alone.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";
import { serve } from "../serve.mjs";
import { SHOTS, SITE, formwork, largeForm, native, protectedForm, real, sample } from "./support.mjs";

let browser;
let site;
let elsewhere;  // another origin, and what reached it
const reached = [];

before(async () => {
    site = await serve(SITE);
    elsewhere = createServer((request, response) => {
        reached.push(request.url);
        response.writeHead(200, { "access-control-allow-origin": "*" }).end("here");
    });
    await new Promise((resolve) => elsewhere.listen(0, "127.0.0.1", resolve));
    browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"] });
});

after(async () => {
    await browser?.close();
    site?.close();
    elsewhere?.close();
});

const SIZES = [{ width: 1280, height: 860 }, { width: 360, height: 740 }];

// A page whose complaints fail the test.
async function newPage(viewport) {
    const page = await browser.newPage({ viewport, acceptDownloads: true });
    page.complaints = [];
    page.on("console", (message) => ["error", "warning"].includes(message.type()) && page.complaints.push(message.text()));
    page.on("pageerror", (error) => page.complaints.push(error.message));
    await page.goto(site.url);
    return page;
}

async function openIn(page, path) {
    await page.setInputFiles("#pdf-file", path);
    await page.waitForSelector("#fields:not([hidden]) .field");
}

const importIn = (page, name, text) =>
    page.setInputFiles("#data-file", { name, mimeType: "application/json", buffer: Buffer.from(text) });

const drawn = (page, times) => page.waitForFunction((wanted) => Number(document.body.dataset.drawn ?? 0) >= wanted, times);
const status = (page) => page.textContent("#status");
const shot = (page, name) => page.screenshot({ path: join(SHOTS, `${name}-${page.viewportSize().width}.png`) });

async function bytesOf(page, button) {
    const [download] = await Promise.all([page.waitForEvent("download"), page.click(button)]);
    return readFileSync(await download.path());
}

// The control of a field, brought into the list by a search for it.
async function control(page, name) {
    await page.fill("#search", name);
    const row = page.locator(`.field[data-name="${name}"]`);
    await row.waitFor();
    return row.locator("input, textarea, select");
}

// No part of the page is wider than the screen.
async function assertFits(page) {
    const [content, room] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    assert.ok(content <= room, `${content} > ${room}`);
}

const isSame = (one, other) => assert.equal(Buffer.compare(one, other), 0);

async function fieldsOf(path) {
    const form = await formwork.open(readFileSync(path));
    return form.list();
}

for (const size of SIZES) {
    test(`a tax form at ${size.width}`, async () => {
        const path = real("prefilled_f1040.pdf") ?? sample("kinds.pdf");
        const fields = await fieldsOf(path);
        const text = fields.find(({ kind, readOnly, maxLength }) => kind === "text" && !readOnly && !maxLength).name;
        const limited = fields.find(({ kind, readOnly, maxLength }) => kind === "text" && !readOnly && maxLength && maxLength < 20);
        const page = await newPage(size);
        await shot(page, "welcome");
        await assertFits(page);
        await openIn(page, path);
        if (size.width > 760)
            await page.waitForSelector(".page canvas");
        await shot(page, "tax-opened");

        await (await control(page, limited.name)).fill("1".repeat(limited.maxLength + 1));
        await page.waitForSelector(".field .problem:not(:empty)");
        assert.match(await status(page), new RegExp(limited.maxLength));
        await shot(page, "tax-refused");
        await (await control(page, limited.name)).fill("12");
        await page.keyboard.press("Tab");
        const first = await control(page, text);
        await first.fill("Ada Byron");
        await page.keyboard.press("Tab");
        await page.waitForFunction(() => !document.querySelector("#undo").disabled);
        await drawn(page, 1);
        await assertFits(page);

        isSame(await bytesOf(page, "#download"), native(path, { [limited.name]: "12", [text]: "Ada Byron" }).bytes);
        await page.click("#undo");
        await page.waitForFunction(() => !document.querySelector("#redo").disabled);
        await page.click("#undo");
        await page.waitForFunction(() => document.querySelector("#undo").disabled);
        isSame(await bytesOf(page, "#download"), readFileSync(path));
        await page.click("#redo");
        await page.click("#redo");
        await page.waitForFunction(() => document.querySelector("#redo").disabled);
        assert.equal(await (await control(page, text)).inputValue(), "Ada Byron");
        await shot(page, "tax-filled");
        assert.deepEqual(page.complaints, []);
        await page.close();
    });

    test(`buttons, choices and data at ${size.width}`, async () => {
        const page = await newPage(size);
        const path = sample("kinds.pdf");
        await openIn(page, path);
        const values = { agree: true, size: "large", language: "fr" };
        await (await control(page, "agree")).check();
        await control(page, "size");
        await page.getByLabel("large", { exact: true }).check();
        await (await control(page, "language")).selectOption("fr");
        await page.waitForFunction(() => document.querySelector("#status").textContent.includes("is filled"));
        await drawn(page, 1);
        await page.fill("#search", "");
        await shot(page, "choices");
        await assertFits(page);
        isSame(await bytesOf(page, "#download"), native(path, values).bytes);

        await page.selectOption("#format", "xfdf");
        const data = await bytesOf(page, "#export");
        assert.match(data.toString(), /<xfdf/);
        await openIn(page, path);
        await importIn(page, "bad.json", '{"postcode": "123456789", "nobody": "x"}');
        await page.waitForSelector("#status.bad");
        assert.match(await status(page), /postcode/);
        await importIn(page, "good.json", '{"agree": true, "size": "large"}');
        await page.waitForFunction(() => document.querySelector("#status").textContent.includes("2 values"));
        assert.equal(await (await control(page, "agree")).isChecked(), true);
        if (size.width < 760) {
            await page.click("[data-view=pages]");
            await page.waitForSelector(".page canvas");
            await shot(page, "pages");
            await assertFits(page);
        }
        assert.deepEqual(page.complaints, []);
        await page.close();
    });

    test(`a protected file at ${size.width}`, async () => {
        const page = await newPage(size);
        await page.setInputFiles("#pdf-file", protectedForm());
        await page.fill("#password-text", "wrong");
        await page.keyboard.press("Enter");
        await page.waitForFunction(() => document.querySelector("#password-problem").textContent !== "");
        await shot(page, "password");
        await page.fill("#password-text", "secret");
        await page.keyboard.press("Enter");
        await page.waitForSelector(".field");
        await (await control(page, "name")).fill("Grace Hopper");
        await page.keyboard.press("Tab");
        await drawn(page, 1);
        const form = await formwork.open(await bytesOf(page, "#download"), { password: "secret" });
        assert.equal(form.fields.find(({ name }) => name === "name").value, "Grace Hopper");
        assert.deepEqual(page.complaints, []);
        await page.close();
    });
}

test("a form of ten thousand fields is there within a second, and few of its rows exist", async (context) => {
    const page = await newPage(SIZES[0]);
    await page.setInputFiles("#pdf-file", sample("no-form.pdf"));
    await page.waitForSelector("#fields:not([hidden])");
    const took = await page.evaluate(async (base64) => {
        const bytes = Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
        const transfer = new DataTransfer();
        transfer.items.add(new File([bytes], "large.pdf", { type: "application/pdf" }));
        const input = document.querySelector("#pdf-file");
        input.files = transfer.files;
        const began = performance.now();
        input.dispatchEvent(new Event("change"));
        while (!document.querySelector(".field"))
            await new Promise(requestAnimationFrame);
        await new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
        return performance.now() - began;
    }, readFileSync(largeForm()).toString("base64"));
    context.diagnostic(`first rows after ${Math.round(took)} ms`);
    assert.ok(took < 1000, `${took} ms`);
    assert.ok(await page.locator(".field").count() < 40);
    await page.evaluate(() => { document.querySelector("#list").scrollTop = 1e7; });
    await page.waitForFunction(() => {
        const last = document.querySelector(".field:last-child");
        return last?.getAttribute("aria-posinset") === last?.getAttribute("aria-setsize");
    });
    assert.ok(await page.locator(".field").count() < 40);
    await page.waitForSelector(".page canvas");
    await shot(page, "large");
    assert.deepEqual(page.complaints, []);
    await page.close();
});

test("the keyboard is enough", async () => {
    const page = await newPage(SIZES[0]);
    const press = async (...keys) => { for (const key of keys) await page.keyboard.press(key); };
    const focused = (property) => page.evaluate((name) => document.activeElement[name], property);
    const tabTo = async (id) => {
        for (let i = 0; i < 60 && await focused("id") !== id; ++i)
            await press("Tab");
        assert.equal(await focused("id"), id);
    };
    await tabTo("choose");
    const [chooser] = await Promise.all([page.waitForEvent("filechooser"), press("Enter")]);
    await chooser.setFiles(sample("kinds.pdf"));
    await page.waitForSelector(".field");
    await page.waitForFunction(() => document.activeElement.closest(".field"));
    await press("Control+A");
    await page.keyboard.type("Keyboard");
    await press("Tab");
    await page.waitForFunction(() => document.querySelector("#status").textContent.startsWith("name"));
    await drawn(page, 1);
    // Every field is reached, and each control has a name and words that say what it takes.
    const reachedNames = new Set();
    for (let i = 0; i < 80; ++i) {
        const at = await page.evaluate(() => {
            const row = document.activeElement.closest(".field");
            const target = document.activeElement.closest("[role=radiogroup]") ?? document.activeElement;
            return row && { name: row.dataset.name, named: Boolean(document.activeElement.labels?.length),
                described: Boolean(document.getElementById(target.getAttribute("aria-describedby")?.split(" ")[0])?.textContent) };
        });
        if (!at)
            break;
        assert.ok(at.named && at.described, JSON.stringify(at));
        reachedNames.add(at.name);
        await press("Tab");
    }
    const takesValue = ({ kind, readOnly }) => ["text", "check", "radio", "combo", "list"].includes(kind) && !readOnly;
    const names = (await fieldsOf(sample("kinds.pdf"))).filter(takesValue).map(({ name }) => name);
    assert.deepEqual(names.filter((name) => name !== "name" && !reachedNames.has(name)), []);
    await page.focus("#download");
    const [download] = await Promise.all([page.waitForEvent("download"), press("Enter")]);
    isSame(readFileSync(await download.path()), native(sample("kinds.pdf"), { name: "Keyboard" }).bytes);
    assert.deepEqual(page.complaints, []);
    await page.close();
});

test("nothing leaves the machine: neither the page nor its workers reach another origin", async () => {
    const page = await newPage(SIZES[0]);
    await openIn(page, sample("kinds.pdf"));
    const url = `http://127.0.0.1:${elsewhere.address().port}/`;
    const leak = async (address) => {
        try {
            return await (await fetch(address)).text();
        } catch (error) {
            return "refused";
        }
    };
    assert.equal((await (await fetch(url)).text()), "here", "the other origin answers");
    reached.length = 0;
    assert.equal(await page.evaluate(leak, url), "refused");
    const workers = page.workers();
    assert.equal(workers.length, 2);
    for (const worker of workers)
        assert.equal(await worker.evaluate(leak, url), "refused");
    await page.evaluate((address) => {
        new Image().src = address;
        navigator.sendBeacon?.(address, "x");
    }, url);
    await page.waitForTimeout(300);
    assert.deepEqual(reached, []);
    await page.close();
});
