#include "bench/fill_main.h"

#include <stdio.h>
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

static void fill_and_save(fz_context* ctx, FILE_MAP map, char** argv, const char* out, int need_appearances, FILL* fill)
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
        pdf_obj* form = pdf_dict_getl(ctx, pdf_trailer(ctx, document), PDF_NAME(Root), PDF_NAME(AcroForm), NULL);
        fill(ctx, document, form, argv + 3);
        if (need_appearances)
            pdf_dict_puts_drop(ctx, form, "NeedAppearances", PDF_TRUE);
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

int fill_main(int argc, char** argv, int count, FILL* fill)
{
    int need_appearances = 0;
    int durable = 0;
    for (int i = 3 + count; i < argc; ++i) {
        need_appearances |= strcmp(argv[i], "--need-appearances") == 0;
        durable |= strcmp(argv[i], "--durable") == 0;
    }
    const FILE_MAP map = argc >= 3 + count ? map_file(argv[1]) : (FILE_MAP){NULL, 0};
    fz_context* ctx = map.bytes ? fz_new_context(NULL, NULL, FZ_STORE_DEFAULT) : NULL;
    if (!ctx) {
        fprintf(stderr, "usage: %s IN OUT and %d arguments [--need-appearances] [--durable]\n", argv[0], count);
        return 2;
    }
    char temporary[4096];
    snprintf(temporary, sizeof temporary, "%s.tmp", argv[2]);
    int status = 0;
    fz_try(ctx)
    {
        fill_and_save(ctx, map, argv, durable ? temporary : argv[2], need_appearances, fill);
        if (durable && (!flush_to_disk(temporary) || rename(temporary, argv[2]) != 0))
            fz_throw(ctx, FZ_ERROR_GENERIC, "can't replace %s", argv[2]);
    }
    fz_catch(ctx)
    {
        fprintf(stderr, "%s: %s\n", argv[0], fz_caught_message(ctx));
        status = 1;
    }
    fz_drop_context(ctx);
    unmap_file(map);
    return status;
}
