// Files that come in and go out.

// Calls `take(file)` with what is chosen or dropped.
export function takeFiles(input, take) {
    input.addEventListener("change", () => {
        const [file] = input.files;
        input.value = "";
        if (file)
            take(file);
    });
}

// Lets people choose; not within the event of the Enter key, in which Chromium shows nothing.
export function choose(input) {
    setTimeout(() => input.showPicker());
}

export function takeDrops(target, take) {
    const over = (event) => {
        event.preventDefault();
        target.classList.add("dropping");
    };
    const left = () => target.classList.remove("dropping");
    document.addEventListener("dragover", over);
    document.addEventListener("dragleave", (event) => !event.relatedTarget && left());
    document.addEventListener("drop", (event) => {
        event.preventDefault();
        left();
        const [file] = event.dataTransfer.files;
        if (file)
            take(file);
    });
}

export function handOut(content, name, type) {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([content], { type }));
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}
