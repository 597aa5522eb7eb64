// What goes wrong, with the numbers of the C interface.

// By number. The first stands for success and is never thrown.
const CODES = [
    "OK", "NOT_FOUND", "IO", "NOT_PDF", "NO_CATALOG", "ENCRYPTED", "DAMAGED", "LIMIT", "NO_FIELD", "WRONG_KIND", "READ_ONLY",
    "NOT_PERMITTED", "BAD_EDIT", "BAD_DATA", "BAD_REQUEST", "NO_MEMORY", "STALE", "BAD_ARGUMENT", "CANCELLED", "END", "INTERNAL",
];

export class FormworkError extends Error {
    // `code` is a word such as "READ_ONLY". `refusals` has {name, why} for each value of a fill that was refused.
    constructor(code, message, refusals = []) {
        super(message);
        this.name = "FormworkError";
        this.code = code;
        this.refusals = refusals;
    }
}

export function codeName(number) {
    return CODES[number] ?? "INTERNAL";
}
