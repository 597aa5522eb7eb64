// Forms of PDF files: opened from bytes, filled, and saved to bytes. Works in browsers, in workers and in node.

export type Value = string | number | boolean | string[] | null;
export type Format = "json" | "csv" | "fdf" | "xfdf" | "url" | "xml" | "xfa";
export type Kind = "text" | "check" | "radio" | "push" | "combo" | "list" | "signature" | "container" | "data";

// The words of the C interface's codes.
export type Code =
    | "NOT_FOUND" | "IO" | "NOT_PDF" | "NO_CATALOG" | "ENCRYPTED" | "DAMAGED" | "LIMIT" | "NO_FIELD" | "WRONG_KIND" | "READ_ONLY"
    | "NOT_PERMITTED" | "BAD_EDIT" | "BAD_DATA" | "BAD_REQUEST" | "NO_MEMORY" | "STALE" | "BAD_ARGUMENT" | "CANCELLED" | "END"
    | "INTERNAL";

export interface Refusal {
    name: string;
    why: string;
}

export class FormworkError extends Error {
    code: Code;
    /** One for each value of a fill that was refused. */
    refusals: Refusal[];
}

/** A rectangle on a page, in points from its lower left corner: left, bottom, right, top. */
export type Rect = [number, number, number, number];

export interface Field {
    name: string;
    kind: Kind;
    /** ISO 32000-2, tables 227, 228, 230 and 232. */
    flags: number;
    readOnly: boolean;
    required: boolean;
    value: string | string[] | null;
    default: string | string[] | null;
    /** What the widgets show where a script formats the value. */
    shown: string | null;
    options: { value: string; text: string }[];
    /** Indices of options. */
    selected: number[];
    maxLength: number | null;
    object: number;
    /** Numbers of the widgets' objects, and where they stand. */
    widgets: number[];
    widgetRects: { page: number | null; rect: Rect | null }[];
    page: number | null;
    label: string | null;
    mappingName: string | null;
    /** Of check boxes and radio groups: the on states of the widgets, and what they export. */
    states: string[];
    exportValues: string[];
    /** Of signature fields. */
    signed: boolean | null;
    inheritedFrom: string | null;
}

export interface FillResult {
    name: string;
    /** "coerced": understood as something else than it said; "kept": the field had it already; "calculated": changed by scripts. */
    result: "set" | "coerced" | "kept" | "calculated" | "refused";
    /** Where it is not simply set. */
    why?: string;
    value?: string | string[] | null;
}

export interface FillOptions {
    /** Also where fields are read-only, signatures lock them, or permissions forbid it. */
    force?: boolean;
    /** Tell what would be refused and change nothing. */
    checkOnly?: boolean;
    /** Pass over names that no field has. */
    ignoreUnknown?: boolean;
}

export interface Facts {
    hasForm: boolean;
    hasXfa: boolean;
    hasOnlyXfa: boolean;
    isSigned: boolean;
    isEncrypted: boolean;
    permitsFilling: boolean;
    permitsEditing: boolean;
    wasRepaired: boolean;
}

/**
 * An open form. Operations throw FormworkError and leave the form as it was; where memory runs out the form may be lost, which later
 * operations say. A name may also be a part of one that no other field has, where fields are named one by one.
 */
export class Form {
    /** The list as it is now: read again after changes. */
    readonly fields: Field[];
    list(options?: { all?: boolean }): Field[];
    /** The same as JSON in UTF-8: bytes pass from a worker to a page faster than many objects. */
    listBytes(options?: { all?: boolean }): Uint8Array;
    /** Pages, fields by kind, signatures, encryption, scripts, ... */
    summary(): Record<string, unknown>;
    readonly facts: Facts;
    /** What people should know although nothing failed: characters that no font has, scripts that did not run, ... */
    readonly notes: string[];

    /** Puts a value into a field, as fill does. */
    set(name: string, value: Value, options?: FillOptions): FillResult[];
    /** All values or, where one is refused, none: the exception has the list of refusals. */
    fill(values: Record<string, Value>, options?: FillOptions): FillResult[];
    import(format: Exclude<Format, "url" | "xml" | "xfa">, data: string | Uint8Array, options?: FillOptions): FillResult[];
    /** FDF has an encoding of its own: bytes. */
    export(format: "fdf", options?: { fields?: string[]; shown?: boolean }): Uint8Array;
    export(format: Exclude<Format, "fdf">, options?: { fields?: string[]; shown?: boolean }): string;

    /** Brings these fields, or all, to their defaults. */
    reset(fields?: string[], options?: { force?: boolean }): void;
    calculate(): void;
    /** Makes what fields show a part of the pages, and takes the form off. */
    flatten(options?: { force?: boolean }): void;

    /** Drops every change, and what undo would bring back. */
    revert(): void;
    /** Takes the last change back; false where there is none. Several values for one field in a row are one change. */
    undo(): boolean;
    redo(): boolean;
    readonly canUndo: boolean;
    readonly canRedo: boolean;

    /** "scripts": 0 none, 1 those that are well-known calls; "draw": whether save draws what changed; "writeXfa": whether it writes XFA data. */
    setOption(name: "scripts" | "draw" | "writeXfa", value: number | boolean): void;
    /** The file with one update behind its unchanged bytes, or that update alone. */
    save(options?: { updateOnly?: boolean }): Uint8Array;
    close(): void;
}

/** Opens a PDF file; the bytes are copied. An encrypted one opens with the empty password or with the one given. */
export function open(bytes: Uint8Array | ArrayBuffer, options?: { password?: string | null }): Promise<Form>;

/** Loads the engine beforehand, or from another place than beside this module. */
export function load(source?: string | URL | ArrayBuffer | Uint8Array | WebAssembly.Module | null): Promise<WebAssembly.Module>;
