// fill_mupdf IN OUT NAME VALUE: makes VALUE the value of one text field through libmupdf, see fill_main.

#include "bench/fill_main.h"

static void fill_one(fz_context* ctx, pdf_document* document, pdf_obj* form, char** arguments)
{
    (void)document;
    pdf_obj* field = pdf_lookup_field(ctx, pdf_dict_get(ctx, form, PDF_NAME(Fields)), arguments[0]);
    if (!field)
        fz_throw(ctx, FZ_ERROR_GENERIC, "no field %s", arguments[0]);
    pdf_dict_put_text_string(ctx, field, PDF_NAME(V), arguments[1]);
}

int main(int argc, char** argv)
{
    return fill_main(argc, argv, 2, fill_one);
}
