// fill_mupdf IN OUT NAME VALUE [--need-appearances] [--durable]
//
// Makes VALUE the value of one text field through libmupdf: the input's bytes go to OUT, then libmupdf appends its incremental
// update. Nothing is drawn anew. --need-appearances sets that flag of the form; --durable writes a temporary file, flushes
// it to disk and renames it.

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
#include <string.h>

#include "bench/file_map.h"

static int write_all(const char* path, FILE_MAP map)
{
    const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0)
        return 0;
    size_t done = 0;
    while (done < map.size) {
        const ssize_t count = write(file, map.bytes + done, map.size - done);
        if (count <= 0)
            break;
        done += (size_t)count;
    }
    return close(file) == 0 && done == map.size;
}

static int flush_to_disk(const char* path)
{
    const int file = open(path, O_WRONLY);
    return file >= 0 && fsync(file) == 0 && close(file) == 0;
}

// Throws when there is no such field.
static void set_value(fz_context* ctx, pdf_document* document, char** argv, int need_appearances)
{
    pdf_obj* form = pdf_dict_getl(ctx, pdf_trailer(ctx, document), PDF_NAME(Root), PDF_NAME(AcroForm), NULL);
    pdf_obj* field = pdf_lookup_field(ctx, pdf_dict_get(ctx, form, PDF_NAME(Fields)), argv[3]);
    if (!field)
        fz_throw(ctx, FZ_ERROR_GENERIC, "no field %s", argv[3]);
    pdf_dict_put_text_string(ctx, field, PDF_NAME(V), argv[4]);
    if (need_appearances)
        pdf_dict_puts_drop(ctx, form, "NeedAppearances", PDF_TRUE);
}

static void fill(fz_context* ctx, FILE_MAP map, char** argv, const char* out, int need_appearances)
{
    pdf_document* document = NULL;
    fz_stream* stream = NULL;
    pdf_write_options options = pdf_default_write_options;
    options.do_incremental = 1;
    fz_var(document);
    fz_var(stream);
    fz_try(ctx)
    {
        stream = fz_open_memory(ctx, map.bytes, map.size);
        document = pdf_open_document_with_stream(ctx, stream);
        set_value(ctx, document, argv, need_appearances);
        if (!write_all(out, map))
            fz_throw(ctx, FZ_ERROR_GENERIC, "can't write %s", out);
        pdf_save_document(ctx, document, out, &options);
    }
    fz_always(ctx)
    {
        pdf_drop_document(ctx, document);
        fz_drop_stream(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
}

int main(int argc, char** argv)
{
    int need_appearances = 0;
    int durable = 0;
    for (int i = 5; i < argc; ++i) {
        need_appearances |= strcmp(argv[i], "--need-appearances") == 0;
        durable |= strcmp(argv[i], "--durable") == 0;
    }
    const FILE_MAP map = argc >= 5 ? map_file(argv[1]) : (FILE_MAP){NULL, 0};
    fz_context* ctx = map.bytes ? fz_new_context(NULL, NULL, FZ_STORE_DEFAULT) : NULL;
    if (!ctx) {
        fprintf(stderr, "usage: fill_mupdf IN OUT NAME VALUE [--need-appearances] [--durable]\n");
        return 2;
    }
    char temporary[4096];
    snprintf(temporary, sizeof temporary, "%s.tmp", argv[2]);
    int status = 0;
    fz_try(ctx)
    {
        fill(ctx, map, argv, durable ? temporary : argv[2], need_appearances);
        if (durable && (!flush_to_disk(temporary) || rename(temporary, argv[2]) != 0))
            fz_throw(ctx, FZ_ERROR_GENERIC, "can't replace %s", argv[2]);
    }
    fz_catch(ctx)
    {
        fprintf(stderr, "fill_mupdf: %s\n", fz_caught_message(ctx));
        status = 1;
    }
    fz_drop_context(ctx);
    unmap_file(map);
    return status;
}
