// fill_all_mupdf IN OUT VALUE: fills a form through libmupdf as fill_all_formwork does, by writing the entries straight into
// each field's dictionary on the way down the tree; see fill_main.

#include <string.h>

#include "bench/fill_main.h"

#define MAX_DEPTH 128
#define FLAG_RADIO (1 << 15)
#define FLAG_PUSH_BUTTON (1 << 16)

// What a field has from those above it.
typedef struct INHERITED {
    pdf_obj* type;
    pdf_obj* flags;
    pdf_obj* most;
    pdf_obj* options;
} INHERITED;

static pdf_obj* own_or(fz_context* ctx, pdf_obj* field, pdf_obj* key, pdf_obj* above)
{
    pdf_obj* own = pdf_dict_get(ctx, field, key);
    return own ? own : above;
}

static void put_text(fz_context* ctx, pdf_obj* field, const INHERITED* has, const char* value)
{
    char text[256];
    const int most = has->most ? pdf_to_int(ctx, has->most) : 0;
    const size_t size = most > 0 && (size_t)most < strlen(value) ? (size_t)most : strlen(value);
    memcpy(text, value, size);
    text[size] = 0;
    pdf_dict_put_text_string(ctx, field, PDF_NAME(V), text);
}

// The first state of a widget that is not "Off", or null.
static pdf_obj* on_state(fz_context* ctx, pdf_obj* widget)
{
    pdf_obj* states = pdf_dict_getl(ctx, widget, PDF_NAME(AP), PDF_NAME(N), NULL);
    const int count = pdf_dict_len(ctx, states);
    for (int i = 0; i < count; ++i) {
        pdf_obj* state = pdf_dict_get_key(ctx, states, i);
        if (state != PDF_NAME(Off))
            return state;
    }
    return NULL;
}

// Turns on the first widget and those with the same state.
static void put_check(fz_context* ctx, pdf_obj* field)
{
    pdf_obj* kids = pdf_dict_get(ctx, field, PDF_NAME(Kids));
    const int count = kids ? pdf_array_len(ctx, kids) : 1;
    pdf_obj* chosen = NULL;
    for (int i = 0; i < count; ++i) {
        pdf_obj* widget = kids ? pdf_resolve_indirect(ctx, pdf_array_get(ctx, kids, i)) : field;
        pdf_obj* state = on_state(ctx, widget);
        if (i == 0)
            chosen = state ? state : PDF_NAME(Yes);
        pdf_dict_put(ctx, widget, PDF_NAME(AS), !state || pdf_name_eq(ctx, state, chosen) ? chosen : PDF_NAME(Off));
    }
    if (chosen)
        pdf_dict_put(ctx, field, PDF_NAME(V), chosen);
}

static void put_last_option(fz_context* ctx, pdf_obj* field, const INHERITED* has)
{
    const int count = pdf_array_len(ctx, has->options);
    if (count == 0)
        return;
    pdf_obj* option = pdf_array_get(ctx, has->options, count - 1);
    if (pdf_is_array(ctx, option))
        option = pdf_array_get(ctx, option, 0);
    pdf_dict_put(ctx, field, PDF_NAME(V), option);
    pdf_obj* indices = pdf_dict_put_array(ctx, field, PDF_NAME(I), 1);
    pdf_array_push_int(ctx, indices, count - 1);
}

static void fill_field(fz_context* ctx, pdf_obj* field, const INHERITED* has, const char* value)
{
    const int flags = has->flags ? pdf_to_int(ctx, has->flags) : 0;
    if (has->type == PDF_NAME(Tx))
        put_text(ctx, field, has, value);
    else if (has->type == PDF_NAME(Ch))
        put_last_option(ctx, field, has);
    else if (has->type == PDF_NAME(Btn) && !(flags & (FLAG_RADIO | FLAG_PUSH_BUTTON)))
        put_check(ctx, field);
}

static void fill_fields(fz_context* ctx, pdf_obj* fields, INHERITED above, int depth, const char* value)
{
    const int count = pdf_array_len(ctx, fields);
    for (int i = 0; i < count; ++i) {
        // Resolved once, so that each look-up is that of a direct dictionary.
        pdf_obj* field = pdf_resolve_indirect(ctx, pdf_array_get(ctx, fields, i));
        const INHERITED has = {
            own_or(ctx, field, PDF_NAME(FT), above.type), own_or(ctx, field, PDF_NAME(Ff), above.flags),
            own_or(ctx, field, PDF_NAME(MaxLen), above.most), own_or(ctx, field, PDF_NAME(Opt), above.options)};
        if (has.type && pdf_dict_get(ctx, field, PDF_NAME(T)))
            fill_field(ctx, field, &has, value);
        pdf_obj* kids = pdf_dict_get(ctx, field, PDF_NAME(Kids));
        if (kids && depth < MAX_DEPTH)
            fill_fields(ctx, kids, has, depth + 1, value);
    }
}

static void fill_all(fz_context* ctx, pdf_document* document, pdf_obj* form, char** arguments)
{
    (void)document;
    if (strlen(arguments[0]) >= 256)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the value is too long");
    const INHERITED none = {NULL, NULL, NULL, NULL};
    fill_fields(ctx, pdf_dict_get(ctx, form, PDF_NAME(Fields)), none, 0, arguments[0]);
}

int main(int argc, char** argv)
{
    return fill_main(argc, argv, 1, fill_all);
}
