#include "document/design/script_entries.h"

#include <algorithm>

#include "core/dictionary.h"
#include "document/edit/edit_array.h"
#include "document/edit/field_tree.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/name_guess.h"
#include "document/lookup/name_pattern.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_kind.h"
#include "forms/field_walk.h"

namespace {

// The fields that `name` means for a calculation of `self`: the one of that name, or all that a pattern fits.
std::vector<std::string> names_like(EDIT_TARGET& target, const CPDFField& self, const std::string& name)
{
    if (field_named(target, name))
        return {name};
    std::vector<std::string> names;
    if (name.find('*') == std::string::npos)
        return names;
    for_each_field(target.form, [&](const CPDFField& field) {
        if (&field == &self || field.m_name.len <= 0 || field_kind(field).id == KIND_CONTAINER)
            return;
        if (const std::string full = full_name(field); fits_pattern(full, name))
            names.push_back(full);
    });
    return names;
}

void set_script(CPDFDictionary& actions, const char* key, const std::string& script)
{
    CPDFObj action;
    if (!script.empty())
        parse_syntax("<</S/JavaScript/JS" + string_syntax(script) + ">>", action);
    actions.set_item(key, &action);
}

PDF_CHANGE_RESULT set_order(EDIT_TARGET& target, const CPDFField& field, bool calculated)
{
    const uint32_t num = field.m_ref.num;
    return edit_array(target.xref, target.form.m_ref, "CO", [&](CPDFArray& order) {
        const auto is_field = [num](const CPDFObj& at) { return at.type == PDF_OBJ_REF && at.ref.num == num; };
        const bool there = std::any_of(order.items, order.items + order.count, is_field);
        if (calculated && !there)
            order.append_ref(field.m_ref);
        return calculated ? !there : remove_references(order, [num](uint32_t at) { return at == num; });
    });
}

}  // namespace

void check_scripts(EDIT_TARGET& target, const CPDFField& field, const PDF_FIELD_DESIGN& design, CPDFRefusals& refusals)
{
    const PDF_FIELD_KIND& kind = field_kind(field);
    const std::string shown = "field " + in_quotes(full_name(field));
    if ((design.format || design.calculation) && kind.id != KIND_TEXT && kind.id != KIND_COMBO)
        refusals.add(shown + " is a " + kind.title + ", which has no format or calculation");
    if (!design.calculation)
        return;
    for (const std::string& name : design.calculation->fields) {
        if (field_named(target, name) == &field)
            refusals.add(shown + " can't be calculated from itself");
        else if (names_like(target, field, name).empty())
            refusals.add(shown + " can't be calculated: " + no_such_field(target.form, name).text);
    }
}

std::vector<std::string> calculation_names(EDIT_TARGET& target, const CPDFField& field,
                                           const PDF_CALCULATION& calculation)
{
    std::vector<std::string> names;
    for (const std::string& name : calculation.fields) {
        for (std::string& found : names_like(target, field, name))
            names.push_back(std::move(found));
    }
    return names;
}

PDF_CHANGE_RESULT apply_scripts(EDIT_TARGET& target, const CPDFField& field, const PDF_FIELD_DESIGN& design,
                                CPDFInheritedEntries& inherited)
{
    CPDFObj above;
    CPDFObj entry;
    CPDFObj actions;
    inherited.find(&field, "AA", entry);
    resolve_obj(&target.xref, &entry, actions);
    CPDFDictionary* dict = actions.dictionary() ? actions.dict : actions.set_dict();
    if (!dict)
        return PDF_CHANGE_RESULT::NO_MEMORY;
    if (design.format) {
        set_script(*dict, "K", design.format->keystroke);
        set_script(*dict, "F", design.format->format);
    }
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    if (design.calculation) {
        const PDF_CALCULATION& calculation = *design.calculation;
        const bool calculated = !calculation.function.empty();
        const std::vector<std::string> names = calculation_names(target, field, calculation);
        set_script(*dict, "C", calculated ? calculation_script(calculation.function, names) : "");
        result = set_order(target, field, calculated);
    }
    const bool none = dict->count == 0 && !inherited.find(field.m_parent, "AA", above);
    const PDF_ENTRY_CHANGE change[] = {{"AA", none ? nullptr : &actions}};
    return both(result, target.xref.change_entries(field.m_ref, change));
}
