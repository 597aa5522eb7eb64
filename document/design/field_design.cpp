#include "document/design/field_design.h"

#include "core/alloc.h"
#include "core/xref_table.h"
#include "document/design/font_home.h"
#include "document/design/script_entries.h"
#include "document/design/widget_style.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/widget_binder.h"
#include "document/tags/structure.h"
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

PDF_CHANGE_RESULT apply_design(EDIT_TARGET& target, CPDFField& field, const PDF_FIELD_DESIGN& design,
                               const PDF_STYLE_TO_APPLY& style, CPDFInheritedEntries& inherited)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const auto& [key, text] : {std::pair("TU", &design.label), std::pair("TM", &design.mapping_name)})
        result = *text ? both(result, store_text(target, field, key, **text)) : result;
    if (design.style.sets_any())
        result = both(result, apply_style(target, field, style, inherited));
    if (design.action)
        result = both(result, store_action(target, field, *design.action));
    if (design.sets_scripts()) {
        result = both(result, apply_scripts(target, field, design, inherited));
        field.reload_entries();
    }
    inherited.forget(field);
    return result;
}

// In a tagged document the structure says what the widgets are, too.
CPDFStatus label_fields(EDIT_TARGET& target, std::span<CPDFField* const> fields, const std::string& label)
{
    std::vector<PDF_REF> widgets;
    for (const CPDFField* field : fields) {
        for (const CPDFAnnotWidget* widget : target.widgets.widgets_of(*field))
            widgets.push_back(widget->m_ref);
    }
    return edit_status(label_widgets(target, tagged_widgets(target, widgets), label),
                       "the structure of the document can't be changed: it is damaged");
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

CPDFStatus design_fields(EDIT_TARGET& target, std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design)
{
    const VXFailureCheck memory;
    PDF_STYLE_TO_APPLY style = {design.style, {}, {}};
    CPDFStatus status = settle_form(target);
    if (status.ok())
        status = prepare_style(target, style);
    CPDFInheritedEntries inherited;
    for (size_t i = 0; i < fields.size() && status.ok(); ++i) {
        const PDF_CHANGE_RESULT result = apply_design(target, *fields[i], design, style, inherited);
        status = edit_status(result, "field " + in_quotes(full_name(*fields[i])) +
                                         " can't be changed: a dictionary of it is missing or damaged");
    }
    if (status.ok() && design.label)
        status = label_fields(target, fields, *design.label);
    return memory.failed() ? no_memory_to_edit() : status;
}
