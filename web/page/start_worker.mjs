// Workers that are bound by the policy of the page: one that is loaded by its address would go by that of the server alone.

export function startWorker(address) {
    const start = new Blob([`import ${JSON.stringify(new URL(address, document.baseURI).href)};`], { type: "text/javascript" });
    const url = URL.createObjectURL(start);
    return new Worker(url, { type: "module" });
}
