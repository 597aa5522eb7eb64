// node stage.mjs FOLDER: puts the page and the package into FOLDER/site, which any server of static files can hand out.
import { cp, mkdir, rm } from "node:fs/promises";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

const from = fileURLToPath(new URL(".", import.meta.url));
const out = process.argv[2];
const site = join(out, "site");
const pdfjs = join(from, "node_modules", "pdfjs-dist");

await rm(site, { recursive: true, force: true });
await mkdir(join(site, "pdfjs"), { recursive: true });
for (const part of ["index.html", "page", "lib", "formwork.mjs", "formwork.d.ts", "package.json"])
    await cp(join(from, part), join(site, part), { recursive: true });
await cp(join(out, "formwork.wasm"), join(site, "formwork.wasm"));
for (const part of ["pdf.min.mjs", "pdf.worker.min.mjs"])
    await cp(join(pdfjs, "build", part), join(site, "pdfjs", part));
for (const part of ["cmaps", "standard_fonts", "LICENSE"])
    await cp(join(pdfjs, part), join(site, "pdfjs", part), { recursive: true });
