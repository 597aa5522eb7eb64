// A server of static files for looking at the page: node serve.mjs FOLDER [PORT]. It sends no headers that matter.
import { createReadStream } from "node:fs";
import { stat } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { pathToFileURL } from "node:url";

const TYPES = {
    ".html": "text/html", ".css": "text/css", ".mjs": "text/javascript", ".js": "text/javascript", ".svg": "image/svg+xml",
    ".wasm": "application/wasm", ".json": "application/json",
};

// Resolves to {url, close}.
export function serve(folder, port = 0) {
    const server = createServer(async (request, response) => {
        const path = normalize(decodeURIComponent(new URL(request.url, "http://localhost").pathname));
        const file = join(folder, path.endsWith("/") ? `${path}index.html` : path);
        const found = await stat(file).catch(() => null);
        if (!found?.isFile())
            return response.writeHead(404).end();
        const type = TYPES[extname(file)] ?? "application/octet-stream";
        response.writeHead(200, { "content-type": type, "content-length": found.size });
        createReadStream(file).pipe(response);
    });
    return new Promise((resolve) => server.listen(port, "127.0.0.1", () => resolve({
        url: `http://127.0.0.1:${server.address().port}/`, close: () => server.close(),
    })));
}

if (import.meta.url === pathToFileURL(process.argv[1]).href)
    console.log((await serve(process.argv[2], Number(process.argv[3] ?? 8080))).url);
