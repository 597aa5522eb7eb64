// Lists the fields of a form through libmupdf: from memory, its fastest way, or with BENCH_FROM_FILE as pdf_open_document
// reads, which takes less memory.

#include <mupdf/fitz.h>
#include <mupdf/pdf.h>
#include <string.h>

#include "bench/file_map.h"
#include "bench/walk_main.h"

#define MAX_DEPTH 128

// The full name of the field being visited.
typedef struct NAME {
    char text[8192];
    size_t size;
} NAME;

static void push_part(NAME* name, const char* part)
{
    const size_t size = strlen(part);
    if (name->size + size + 1 > sizeof name->text)
        return;
    if (name->size > 0)
        name->text[name->size++] = '.';
    memcpy(name->text + name->size, part, size);
    name->size += size;
}

static void list_texts(fz_context* ctx, pdf_obj* value, LISTING* listing)
{
    const char* text = NULL;
    if (pdf_is_string(ctx, value))
        text = pdf_to_text_string(ctx, value);
    else if (pdf_is_name(ctx, value))
        text = pdf_to_name(ctx, value);
    if (text)
        listing_text(listing, text, strlen(text));
}

static void list_field(fz_context* ctx, pdf_obj* field, const NAME* name, LISTING* listing)
{
    pdf_obj* value = pdf_dict_get(ctx, field, PDF_NAME(V));
    if (!value)
        value = pdf_dict_get(ctx, field, PDF_NAME(DV));
    listing_name(listing, name->text, name->size);
    if (pdf_is_array(ctx, value)) {
        const int count = pdf_array_len(ctx, value);
        for (int i = 0; i < count; ++i)
            list_texts(ctx, pdf_array_get(ctx, value, i), listing);
    } else if (value) {
        list_texts(ctx, value, listing);
    }
    listing_end(listing);
}

static void walk_fields(fz_context* ctx, pdf_obj* fields, NAME* name, int depth, LISTING* listing)
{
    const int count = pdf_array_len(ctx, fields);
    for (int i = 0; i < count; ++i) {
        // Resolved once, so that each look-up is that of a direct dictionary.
        pdf_obj* field = pdf_resolve_indirect(ctx, pdf_array_get(ctx, fields, i));
        const size_t above = name->size;
        pdf_obj* part = pdf_dict_get(ctx, field, PDF_NAME(T));
        if (pdf_is_string(ctx, part)) {
            push_part(name, pdf_to_text_string(ctx, part));
            list_field(ctx, field, name, listing);
        }
        pdf_obj* kids = pdf_dict_get(ctx, field, PDF_NAME(Kids));
        if (kids && depth < MAX_DEPTH)
            walk_fields(ctx, kids, name, depth + 1, listing);
        name->size = above;
    }
}

static pdf_document* open_document(fz_context* ctx, const char* path, FILE_MAP map)
{
#ifdef BENCH_FROM_FILE
    (void)map;
    return pdf_open_document(ctx, path);
#else
    (void)path;
    pdf_document* document = NULL;
    fz_stream* stream = fz_open_memory(ctx, map.bytes, map.size);
    fz_try(ctx)
    {
        document = pdf_open_document_with_stream(ctx, stream);
    }
    fz_always(ctx)
    {
        fz_drop_stream(ctx, stream);
    }
    fz_catch(ctx)
    {
        fz_rethrow(ctx);
    }
    return document;
#endif
}

static fz_context* s_ctx;

static int walk(const char* path, LISTING* listing)
{
    fz_context* ctx = s_ctx;
#ifdef BENCH_FROM_FILE
    const FILE_MAP map = {NULL, 0};
#else
    const FILE_MAP map = map_file(path);
#endif
    pdf_document* document = NULL;
    int done = 0;
    fz_var(document);
    fz_var(done);
    fz_try(ctx)
    {
        NAME name = {.size = 0};
        document = open_document(ctx, path, map);
        pdf_obj* root = pdf_dict_get(ctx, pdf_trailer(ctx, document), PDF_NAME(Root));
        walk_fields(ctx, pdf_dict_getl(ctx, root, PDF_NAME(AcroForm), PDF_NAME(Fields), NULL), &name, 0, listing);
        done = 1;
    }
    fz_always(ctx)
    {
        pdf_drop_document(ctx, document);
    }
    fz_catch(ctx)
    {
        fprintf(stderr, "walk_mupdf: %s: %s\n", path, fz_caught_message(ctx));
    }
    unmap_file(map);
    return done;
}

int main(int argc, char** argv)
{
    s_ctx = fz_new_context(NULL, NULL, FZ_STORE_DEFAULT);
    if (!s_ctx)
        return 1;
    const int status = walk_main(argc, argv, walk);
    fz_drop_context(s_ctx);
    return status;
}
