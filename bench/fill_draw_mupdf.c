// fill_draw_mupdf IN OUT VALUE: fills the widgets of every page through libmupdf's form functions and has it draw them; see
// fill_main. Values are those of fill_all_formwork.

#include <string.h>

#include "bench/fill_main.h"

static void fill_text(fz_context* ctx, pdf_document* document, pdf_obj* field, const char* value)
{
    char text[256];
    const int most = pdf_to_int(ctx, pdf_dict_get_inheritable(ctx, field, PDF_NAME(MaxLen)));
    const size_t size = most > 0 && (size_t)most < strlen(value) ? (size_t)most : strlen(value);
    memcpy(text, value, size);
    text[size] = 0;
    pdf_set_field_value(ctx, document, field, text, 1);
}

static void fill_choice(fz_context* ctx, pdf_document* document, pdf_obj* field)
{
    pdf_obj* options = pdf_dict_get_inheritable(ctx, field, PDF_NAME(Opt));
    const int count = pdf_array_len(ctx, options);
    if (count == 0)
        return;
    pdf_obj* option = pdf_array_get(ctx, options, count - 1);
    if (pdf_is_array(ctx, option))
        option = pdf_array_get(ctx, option, 0);
    pdf_set_field_value(ctx, document, field, pdf_to_text_string(ctx, option), 1);
}

static void fill_widget(fz_context* ctx, pdf_document* document, pdf_annot* widget, const char* value)
{
    pdf_obj* field = pdf_annot_obj(ctx, widget);
    switch (pdf_widget_type(ctx, widget)) {
    case PDF_WIDGET_TYPE_TEXT:
        fill_text(ctx, document, field, value);
        break;
    case PDF_WIDGET_TYPE_COMBOBOX:
    case PDF_WIDGET_TYPE_LISTBOX:
        fill_choice(ctx, document, field);
        break;
    case PDF_WIDGET_TYPE_CHECKBOX:
        if (strcmp(pdf_field_value(ctx, field), "Off") == 0 || !*pdf_field_value(ctx, field))
            pdf_toggle_widget(ctx, widget);
        break;
    default:
        break;
    }
}

static void fill_draw(fz_context* ctx, pdf_document* document, pdf_obj* form, char** arguments)
{
    (void)form;
    if (strlen(arguments[0]) >= 256)
        fz_throw(ctx, FZ_ERROR_GENERIC, "the value is too long");
    const int pages = pdf_count_pages(ctx, document);
    for (int i = 0; i < pages; ++i) {
        pdf_page* page = pdf_load_page(ctx, document, i);
        for (pdf_annot* widget = pdf_first_widget(ctx, page); widget; widget = pdf_next_widget(ctx, widget))
            fill_widget(ctx, document, widget, arguments[0]);
        pdf_update_page(ctx, page);
        fz_drop_page(ctx, (fz_page*)page);
    }
}

int main(int argc, char** argv)
{
    return fill_main(argc, argv, 1, fill_draw);
}
