// What the racers on libmupdf that fill share: the command line, opening, and saving as an incremental update.
#pragma once

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

// Changes the fields of `document`, whose form dictionary is `form`; `arguments` are those behind IN and OUT. Throws
// when it can't.
typedef void FILL(fz_context* ctx, pdf_document* document, pdf_obj* form, char** arguments);

// Runs PROGRAM IN OUT ARGUMENT... [--need-appearances] [--durable] with `count` arguments and returns the exit status:
// the input's bytes go to OUT, then libmupdf appends its incremental update. Nothing is drawn anew. --need-appearances
// sets that flag of the form; --durable writes a temporary file, flushes it to disk and renames it.
int fill_main(int argc, char** argv, int count, FILL* fill);
