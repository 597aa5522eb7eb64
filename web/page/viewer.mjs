// The pages of the file as it would be saved now, drawn by pdf.js. Pages are drawn when they come into view.
import * as pdfjs from "../pdfjs/pdf.min.mjs";
import { startWorker } from "./start_worker.mjs";

pdfjs.GlobalWorkerOptions.workerPort = startWorker("pdfjs/pdf.worker.min.mjs");

const LOCAL = (folder) => new URL(`../pdfjs/${folder}/`, import.meta.url).href;
const FURTHEST_ZOOM = 1.6;

export class Viewer {
    // `box` scrolls; `picked(page, x, y)` is told where a page is clicked, in points of the page.
    constructor(box, picked) {
        this.box = box;
        this.picked = picked;
        this.pages = [];
        this.seen = new IntersectionObserver((entries) => this.#came(entries), { root: box, rootMargin: "300px" });
        this.width = 0;
        new ResizeObserver(() => this.#resized()).observe(box);
    }

    // Shows these bytes, which end with the call. The pages of the same file stay where they are while it is drawn anew.
    async show(bytes, password, { anew = false } = {}) {
        const task = pdfjs.getDocument({
            data: bytes, password: password ?? undefined, isEvalSupported: false, enableXfa: false, stopAtErrors: false,
            cMapUrl: LOCAL("cmaps"), cMapPacked: true, standardFontDataUrl: LOCAL("standard_fonts"), useSystemFonts: false,
        });
        const file = await task.promise;
        const before = this.file;
        this.file = file;
        if (anew || this.pages.length !== file.numPages)
            await this.#layOut();
        else
            this.pages.forEach((page) => { page.isStale = true; });
        this.pages.filter(({ isSeen }) => isSeen).forEach((page) => this.#draw(page));
        await Promise.all(this.pages.map(({ drawing }) => drawing));
        before?.destroy();
    }

    // Marks the widgets of a field, and brings the first one into view unless the reader is on the pages.
    mark(field) {
        this.box.querySelectorAll(".spot").forEach((spot) => spot.remove());
        const places = (field?.widgetRects ?? []).filter(({ page, rect }) => rect && this.pages[page - 1]);
        const spots = places.map(({ page, rect }) => this.#spot(this.pages[page - 1], rect));
        if (spots[0] && !this.box.contains(document.activeElement))
            spots[0].scrollIntoView({ block: "nearest", inline: "nearest" });
    }

    clear() {
        this.file?.destroy();
        this.file = null;
    }

    // Pages have the size of the first one until they were drawn: asking each takes long in long files.
    async #layOut() {
        this.seen.disconnect();
        this.box.replaceChildren();
        const first = (await this.file.getPage(1)).getViewport({ scale: 1 });
        this.pages = Array.from({ length: this.file.numPages }, (_, at) => {
            const element = document.createElement("div");
            element.className = "page";
            const page = { number: at + 1, element, viewport: first, isStale: true };
            element.addEventListener("click", (event) => this.#clicked(page, event));
            this.box.append(element);
            this.#size(page);
            return page;
        });
        this.pages.forEach(({ element }) => this.seen.observe(element));
    }

    #scale(viewport) {
        const style = getComputedStyle(this.box);
        const room = this.box.clientWidth - parseFloat(style.paddingLeft) - parseFloat(style.paddingRight);
        return Math.max(0.1, Math.min(room / viewport.width, FURTHEST_ZOOM));
    }

    #size(page) {
        const scale = this.#scale(page.viewport);
        page.scale = scale;
        page.element.style.width = `${page.viewport.width * scale}px`;
        page.element.style.height = `${page.viewport.height * scale}px`;
    }

    #resized() {
        if (this.box.clientWidth === 0 || this.box.clientWidth === this.width)
            return;
        this.width = this.box.clientWidth;
        for (const page of this.pages) {
            this.#size(page);
            page.isStale = true;
            page.element.querySelectorAll(".spot").forEach((spot) => spot.remove());
            if (page.isSeen)
                this.#draw(page);
        }
    }

    #came(entries) {
        for (const { target, isIntersecting } of entries) {
            const page = this.pages.find(({ element }) => element === target);
            if (!page)
                continue;
            page.isSeen = isIntersecting;
            if (isIntersecting && page.isStale)
                this.#draw(page);
        }
    }

    #draw(page) {
        page.drawing = (page.drawing ?? Promise.resolve()).then(() => this.#drawNow(page)).catch((error) => {
            if (error.name !== "RenderingCancelledException")
                console.warn(`page ${page.number} can't be drawn: ${error.message}`);
        });
    }

    // The new picture takes the place of the old one when it is complete.
    async #drawNow(page) {
        if (!page.isStale || !this.file)
            return;
        page.isStale = false;
        const source = await this.file.getPage(page.number);
        page.viewport = source.getViewport({ scale: 1 });
        this.#size(page);
        const viewport = source.getViewport({ scale: page.scale * Math.min(devicePixelRatio, 2) });
        const canvas = document.createElement("canvas");
        canvas.width = Math.ceil(viewport.width);
        canvas.height = Math.ceil(viewport.height);
        canvas.setAttribute("role", "img");
        canvas.setAttribute("aria-label", `page ${page.number}`);
        await source.render({ canvasContext: canvas.getContext("2d"), viewport }).promise;
        page.element.querySelector("canvas")?.remove();
        page.element.prepend(canvas);
    }

    #spot(page, rect) {
        const viewport = page.viewport.clone({ scale: page.scale });
        const [x0, y0, x1, y1] = viewport.convertToViewportRectangle(rect);
        const spot = document.createElement("div");
        spot.className = "spot";
        Object.assign(spot.style, {
            left: `${Math.min(x0, x1) - 3}px`, top: `${Math.min(y0, y1) - 3}px`,
            width: `${Math.abs(x1 - x0) + 6}px`, height: `${Math.abs(y1 - y0) + 6}px`,
        });
        page.element.append(spot);
        return spot;
    }

    #clicked(page, event) {
        const box = page.element.getBoundingClientRect();
        const viewport = page.viewport.clone({ scale: page.scale });
        this.picked(page.number, ...viewport.convertToPdfPoint(event.clientX - box.left, event.clientY - box.top));
    }
}
