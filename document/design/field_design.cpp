#include "document/design/field_design.h"

#include "core/alloc.h"
#include "core/xref_table.h"
#include "document/design/font_home.h"
#include "document/design/script_entries.h"
#include "document/design/widget_style.h"
#include "document/edit/form_home.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/widget_binder.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

PDF_CHANGE_RESULT store_text(EDIT_TARGET& target, const CPDFField& field, const char* key, const std::string& text)
{
    CPDFObj value;
    value.type = PDF_OBJ_STRING;
    value.str = pdf_string_of(text);
    const PDF_ENTRY_CHANGE change[] = {{key, text.empty() ? nullptr : &value}};
    return target.xref.change_entries(field.m_ref, change);
}

PDF_CHANGE_RESULT store_action(EDIT_TARGET& target, const CPDFField& field, const PDF_BUTTON_ACTION& action)
{
    CPDFObj value;
    if (!action.dictionary.empty())
        parse_syntax(action.dictionary, value);
    const PDF_ENTRY_CHANGE change[] = {{"A", action.dictionary.empty() ? nullptr : &value}};
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const CPDFAnnotWidget* widget : target.widgets.widgets_of(field))
        result = both(result, target.xref.change_entries(widget->m_ref, change));
    return result;
}

}  // namespace

void check_design(EDIT_TARGET& target, std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design,
                  CPDFRefusals& refusals)
{
    if (const std::string wrong = design.style.font ? wrong_font(target, *design.style.font) : ""; !wrong.empty())
        refusals.add(wrong);
    for (const CPDFField* field : fields) {
        const PDF_FIELD_KIND& kind = field_kind(*field);
        check_style(*field, design.style, refusals);
        check_scripts(target, *field, design, refusals);
        if (design.action && kind.id != KIND_PUSH)
            refusals.add("field " + in_quotes(full_name(*field)) + " is a " + kind.title + ", which has no action");
        if (field->m_name.len <= 0)
            refusals.add("a field without a name of its own only shows field " + in_quotes(full_name(*field)));
    }
}

CPDFStatus design_field(EDIT_TARGET& target, const CPDFField& field, const PDF_FIELD_DESIGN& design)
{
    const VXFailureCheck memory;
    if (CPDFStatus status = settle_form(target); !status.ok())
        return status;
    std::string font;
    if (design.style.font) {
        if (CPDFStatus status = find_font(target, *design.style.font, font); !status.ok())
            return status;
    }
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const auto& [key, text] : {std::pair("TU", &design.label), std::pair("TM", &design.mapping_name)})
        result = *text ? both(result, store_text(target, field, key, **text)) : result;
    if (design.style.sets_any())
        result = both(result, apply_style(target, field, design.style, font));
    if (design.sets_scripts())
        result = both(result, apply_scripts(target, field, design));
    if (design.action)
        result = both(result, store_action(target, field, *design.action));
    if (memory.failed())
        return no_memory_to_edit();
    return edit_status(result, "field " + in_quotes(full_name(field)) +
                                   " can't be changed: a dictionary of it is missing or damaged");
}
