// The page: what is opened, filled and handed out.
import { startEngine } from "./client.mjs";
import { FieldList } from "./field_list.mjs";
import { labelOf } from "./field_words.mjs";
import { choose, handOut, takeDrops, takeFiles } from "./files.mjs";
import { askPassword } from "./password.mjs";
import { Viewer } from "./viewer.mjs";

const REDRAW_DELAY = 200;  // milliseconds after the last change

const at = (id) => document.getElementById(id);
const engine = startEngine();
const list = new FieldList(at("list"), { check, set, focused: (field) => viewer.mark(field) }, (shown, all) => {
    at("count").textContent = shown === all ? number(all) : `${number(shown)} of ${number(all)}`;
});
const viewer = new Viewer(at("pages"), pick);
const opened = { name: "", password: null };

function say(sentence, isBad = false) {
    at("status").textContent = sentence;
    at("status").classList.toggle("bad", isBad);
}

// Runs what a button does; what goes wrong is said.
async function attempt(work) {
    try {
        await work();
    } catch (error) {
        say(error.message, true);
    }
}

const number = (count) => count.toLocaleString("en");
const plural = (count, word) => `${number(count)} ${word}${count === 1 ? "" : "s"}`;

function showState({ canUndo, canRedo, notes }) {
    at("undo").disabled = !canUndo;
    at("redo").disabled = !canRedo;
    at("notes").hidden = notes.length === 0;
    at("notes").replaceChildren(...notes.map((note) => Object.assign(document.createElement("li"), { textContent: note })));
}

// Opens bytes with a password that is asked for as long as it is wrong; null when people give up.
async function openBytes(bytes) {
    for (let password = null, problem = ""; ;) {
        try {
            return { ...await engine.open(bytes, password), password };
        } catch (error) {
            if (error.code !== "ENCRYPTED")
                throw error;
            problem = password === null ? "" : error.message;
            password = await askPassword(problem);
            if (password === null)
                return null;
        }
    }
}

async function openFile(file) {
    say(`Opening ${file.name}…`);
    const bytes = new Uint8Array(await file.arrayBuffer());
    const form = await openBytes(bytes);
    if (!form)
        return say("The file was not opened.");
    Object.assign(opened, { name: file.name, password: form.password });
    at("file-name").textContent = file.name;
    at("welcome").hidden = true;
    for (const id of ["views", "pages", "fields"])
        at(id).hidden = false;
    for (const id of ["import", "format", "export", "download"])
        at(id).disabled = false;
    at("search").value = list.words = "";
    list.showFields(form.fields, { anew: true });
    showState(form);
    say(openedWords(form));
    document.title = `${file.name} – Formwork`;
    list.rows.values().next().value?.focus();
    viewer.mark(null);
    await viewer.show(bytes, opened.password, { anew: true });
}

function openedWords({ fields, facts }) {
    const words = [facts.hasForm ? `${plural(list.fields.length, "field")}.` : "This file has no form."];
    if (facts.hasOnlyXfa)
        words.push("Its form is made of XFA alone, which is listed and not drawn.");
    if (facts.isSigned)
        words.push("It is signed: changes may break the signature.");
    if (facts.isEncrypted && !facts.permitsFilling)
        words.push("Its author does not permit to fill it.");
    return words.join(" ");
}

let redrawTimer = 0;
function redrawSoon() {
    clearTimeout(redrawTimer);
    redrawTimer = setTimeout(() => attempt(async () => {
        await viewer.show(await engine.save(), opened.password);
        document.body.dataset.drawn = Number(document.body.dataset.drawn ?? 0) + 1;
    }), REDRAW_DELAY);
}

// The sentence that tells why a field does not take a value; "" where it does.
async function check(name, value) {
    try {
        await engine.check(name, value);
        if (at("status").classList.contains("bad"))
            say("");
        return "";
    } catch (error) {
        return refused(error);
    }
}

// Says why, and hands back the same for a row that has the field's name already.
function refused(error) {
    const why = error.refusals?.[0]?.why ?? error.message;
    say(why, true);
    return why.replace(/^field ".*?" (?=\w)/, "");
}

async function set(field, value) {
    try {
        const { report, ...state } = await engine.set(field.name, value);
        list.showValues(report.filter(({ result }) => result !== "refused").map(({ name, value: now }) => [name, now ?? null]));
        showState(state);
        const others = report.filter(({ result }) => result === "calculated").length;
        say(`${labelOf(field)} is filled${others ? `, and ${plural(others, "other field")} calculated` : ""}.`);
        redrawSoon();
    } catch (error) {
        list.showProblem(field.name, refused(error));
    }
}

// What undo, redo and import make of the whole form.
function showAll(form) {
    list.showFields(form.fields);
    showState(form);
    redrawSoon();
}

async function importFile(file) {
    const format = file.name.split(".").pop().toLowerCase();
    try {
        const form = await engine.import(format, new Uint8Array(await file.arrayBuffer()));
        showAll(form);
        say(`${plural(form.report.filter(({ result }) => result !== "refused").length, "value")} from ${file.name} filled in.`);
    } catch (error) {
        error.refusals?.forEach(({ name, why }) => list.byName.has(name) && list.showProblem(name, why));
        say(`${file.name} was not filled in: ${error.message}`, true);
    }
}

const TYPES = { json: "application/json", csv: "text/csv", fdf: "application/vnd.fdf", xfdf: "application/vnd.adobe.xfdf" };

async function exportAs(format) {
    const name = `${opened.name.replace(/\.pdf$/i, "")}.${format}`;
    handOut(await engine.export(format), name, TYPES[format]);
    say(`The values were handed out as ${name}.`);
}

async function download() {
    handOut(await engine.save(), opened.name.replace(/(\.pdf)?$/i, "-filled.pdf"), "application/pdf");
    say("The filled file was handed out.");
}

// A click on a page goes to the field there.
function pick(page, x, y) {
    const hit = list.fields.find(({ widgetRects }) => widgetRects?.some(({ page: on, rect }) =>
        on === page && rect && x >= rect[0] && x <= rect[2] && y >= rect[1] && y <= rect[3]));
    if (!hit)
        return;
    showView("fields");
    list.goTo(hit.name);
    viewer.mark(hit);
}

function showView(view) {
    at("main").dataset.view = view;
    for (const button of at("views").children)
        button.setAttribute("aria-pressed", button.dataset.view === view);
}

const isData = ({ name }) => /\.(json|csv|fdf|xfdf)$/i.test(name);
const take = (file) => attempt(() => isData(file) && opened.name ? importFile(file) : openFile(file));

takeFiles(at("pdf-file"), take);
takeFiles(at("data-file"), take);
takeDrops(at("main"), take);
at("open").onclick = at("choose").onclick = () => choose(at("pdf-file"));
at("import").onclick = () => choose(at("data-file"));
at("undo").onclick = () => attempt(async () => { showAll(await engine.undo()); say("Undone."); });
at("redo").onclick = () => attempt(async () => { showAll(await engine.redo()); say("Done again."); });
at("download").onclick = () => attempt(download);
at("export").onclick = () => attempt(() => exportAs(at("format").value));
at("search").oninput = ({ target }) => list.search(target.value);
at("views").onclick = ({ target }) => target.dataset.view && showView(target.dataset.view);
showView("fields");
