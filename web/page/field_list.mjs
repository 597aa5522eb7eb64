// The list of fields. Only the rows that can be seen exist, and the one that has the focus; the heights of the others are taken to
// be those of their kind until they were seen.
import { fieldRow } from "./field_row.mjs";
import { isMultiline, matches, statesOf, takesFocus } from "./field_words.mjs";

const OVERSCAN = 400;  // points above and below that have rows, too

function guessHeight(field) {
    if (isMultiline(field))
        return 166;
    if (field.kind === "radio" || statesOf(field).length > 1)
        return 80 + 31 * Math.min(statesOf(field).length + 1, 7);
    return field.kind === "list" ? 180 : field.kind === "check" ? 84 : 103;
}

export class FieldList {
    // `box` scrolls; `actions` are those of the rows; `counted(shown, all)` is told how many fields there are.
    constructor(box, actions, counted) {
        this.box = box;
        this.actions = actions;
        this.counted = counted;
        this.list = document.createElement("ul");
        this.list.setAttribute("role", "list");
        box.append(this.list);
        this.fields = [];
        this.words = "";
        this.rows = new Map();      // by field name: what fieldRow made
        this.problems = new Map();  // by field name
        this.heights = new Map();   // by field name, as measured
        this.sizes = new ResizeObserver((entries) => this.#measured(entries));
        box.addEventListener("scroll", () => this.#draw());
        box.addEventListener("focusin", () => this.#draw());
        new ResizeObserver(() => this.#draw()).observe(box);
    }

    // Other fields, or the same ones with other values.
    showFields(fields, { anew = false } = {}) {
        this.byName = new Map();
        for (const field of fields) {
            if (field.kind !== "container" && field.kind !== "push" && !this.byName.has(field.name))
                this.byName.set(field.name, field);
        }
        this.fields = [...this.byName.values()];
        if (anew) {
            this.rows.forEach((row) => this.#drop(row));
            this.rows.clear();
            this.heights.clear();
            this.box.scrollTop = 0;
        }
        this.problems.clear();
        this.#filter();
        this.rows.forEach((row, name) => this.byName.has(name) && row.show(this.byName.get(name), "", true));
    }

    // New values of some fields, by name.
    showValues(values) {
        for (const [name, value] of values) {
            const field = this.byName.get(name);
            if (!field)
                continue;
            field.value = value;
            this.problems.delete(name);
            this.rows.get(name)?.show(field, "");
        }
    }

    showProblem(name, sentence) {
        this.problems.set(name, sentence);
        this.rows.get(name)?.show(this.byName.get(name), sentence);
    }

    search(words) {
        this.words = words.trim().toLowerCase();
        this.box.scrollTop = 0;
        this.#filter();
    }

    // Brings a field into view and the focus to it.
    goTo(name) {
        if (!this.places.has(name)) {
            this.words = "";
            this.#filter();
        }
        const at = this.places.get(name);
        if (at === undefined)
            return;
        if (this.tops[at] < this.box.scrollTop || this.tops[at + 1] > this.box.scrollTop + this.box.clientHeight)
            this.box.scrollTop = this.tops[at] - this.box.clientHeight / 3;
        this.#draw();
        this.rows.get(name)?.focus();
    }

    #filter() {
        this.shown = this.words ? this.fields.filter((field) => matches(field, this.words)) : this.fields;
        this.places = new Map(this.shown.map(({ name }, at) => [name, at]));
        this.counted(this.shown.length, this.fields.length);
        this.#layOut();
        this.#draw();
    }

    #layOut() {
        this.tops = new Float64Array(this.shown.length + 1);
        this.shown.forEach((field, at) => {
            this.tops[at + 1] = this.tops[at] + (this.heights.get(field.name) ?? guessHeight(field));
        });
        this.list.style.height = `${this.tops.at(-1)}px`;
    }

    // The first row that ends below a place.
    #rowAt(top) {
        let [low, high] = [0, this.shown.length];
        while (low < high) {
            const middle = (low + high) >> 1;
            if (this.tops[middle + 1] <= top)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }

    #draw() {
        if (!this.shown)
            return;
        const top = this.box.scrollTop;
        const first = this.#rowAt(Math.max(0, top - OVERSCAN));
        const last = this.#rowAt(top + this.box.clientHeight + OVERSCAN);
        const [before, after] = this.#besideFocus();
        const wanted = new Set([...this.shown.slice(first, last + 1), ...this.shown.slice(before, after + 1)]);
        for (const [name, row] of this.rows) {
            if (wanted.has(this.byName.get(name)) || (this.places.has(name) && row.element.contains(document.activeElement)))
                continue;
            this.#drop(row);
            this.rows.delete(name);
        }
        wanted.forEach(({ name }) => this.#rowOf(this.places.get(name)));
        this.rows.forEach((row, name) => this.#place(row, this.places.get(name)));
    }

    // The places of the rows that the tab key leads to from the focused one, which must be there before it is pressed; an empty
    // range where no row has the focus.
    #besideFocus() {
        const at = this.places.get(document.activeElement?.closest(".field")?.dataset.name);
        if (at === undefined)
            return [0, -1];
        const next = (from, step) => {
            do
                from += step;
            while (this.shown[from] && !takesFocus(this.shown[from]));
            return from;
        };
        return [Math.max(0, next(at, -1)), next(at, 1)];
    }

    // Rows stand in the order of the fields, so that the tab key and screen readers go through them.
    #rowOf(at) {
        const { name } = this.shown[at];
        let row = this.rows.get(name);
        if (!row) {
            row = fieldRow(this.shown[at], this.problems.get(name) ?? "", this.actions);
            row.element.dataset.name = name;
            const after = [...this.list.children].find((other) => this.places.get(other.dataset.name) > at) ?? null;
            this.list.insertBefore(row.element, after);
            this.rows.set(name, row);
            this.sizes.observe(row.element);
        }
        return row;
    }

    #place(row, at) {
        row.element.style.transform = `translateY(${this.tops[at]}px)`;
        row.element.setAttribute("aria-setsize", this.shown.length);
        row.element.setAttribute("aria-posinset", at + 1);
    }

    #drop(row) {
        this.sizes.unobserve(row.element);
        row.element.remove();
    }

    // What stands at the top of the view stays there when rows above it turn out to be of another height.
    #measured(entries) {
        const anchor = this.#rowAt(this.box.scrollTop);
        const offset = this.box.scrollTop - (this.tops[anchor] ?? 0);
        let changed = false;
        for (const { target, borderBoxSize } of entries) {
            const height = borderBoxSize[0].blockSize;
            changed ||= height > 0 && this.heights.get(target.dataset.name) !== height;
            if (height > 0)
                this.heights.set(target.dataset.name, height);
        }
        if (!changed)
            return;
        this.#layOut();
        if (this.box.scrollTop > 0 && anchor < this.shown.length)
            this.box.scrollTop = this.tops[anchor] + offset;
        this.#draw();
    }
}
