#include "document/fill/filler.h"

#include <algorithm>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

CPDFStatus refuse_fill(PDF_CODE code, const CPDFField& field, const std::string& why)
{
    return CPDFStatus::failed(code, "field \"" + full_name(field) + "\" " + why);
}

std::string quoted_list(const std::vector<std::string>& words)
{
    constexpr size_t MOST = 12;
    std::string list;
    for (size_t i = 0; i < words.size() && i < MOST; ++i) {
        const bool last = i + 1 == words.size();
        list += i == 0 ? "" : last ? " or " : ", ";
        list += '"' + words[i] + '"';
    }
    return words.size() > MOST ? list + " or one of " + std::to_string(words.size() - MOST) + " more" : list;
}

namespace {

std::vector<std::string> words_of(const VALUE_TEXT& held)
{
    return held.is_list ? held.items : std::vector<std::string>{held.text};
}

// Whether `value` says what the field has; options count in any order.
bool has_value(const CPDFField& field, const CPDFValue& value)
{
    if (!takes_values(field.m_type, field.m_flags) || std::holds_alternative<bool>(value))
        return false;
    const std::string* text = std::get_if<std::string>(&value);
    const CPDFObj& stored = field.m_value;
    if (stored.type == PDF_OBJ_STREAM)
        return text && stream_text(*field.m_xref, *stored.stream) == *text;
    const VALUE_TEXT held = value_text(*field.m_xref, stored);
    if (!held.present)
        return text && text->empty();
    std::vector<std::string> has = words_of(held);
    std::vector<std::string> given = text ? std::vector<std::string>{*text} : std::get<std::vector<std::string>>(value);
    if (field.m_type == FIELD_CHOICE) {
        std::sort(has.begin(), has.end());
        std::sort(given.begin(), given.end());
    }
    return has == given;
}

CPDFStatus plan_kind(const CPDFValue& value, PDF_WORDS words, const CPDFWidgetBinder& widgets, PDF_FILL_PLAN& plan)
{
    const CPDFField& field = *plan.field;
    switch (field.m_type) {
    case FIELD_TEXT:
        return plan_text(value, plan);
    case FIELD_CHOICE:
        return plan_choice(value, plan);
    case FIELD_BUTTON:
        if (!(field.m_flags & FIELD_PUSH_BUTTON) || (field.m_flags & FIELD_RADIO))
            return plan_button(value, words, widgets, plan);
        return refuse_fill(PDF_CODE::WRONG_KIND, field, "is a push button, which has no value");
    case FIELD_SIGNATURE:
        return refuse_fill(PDF_CODE::WRONG_KIND, field, "is a signature field, which can't be filled");
    default:
        return refuse_fill(PDF_CODE::WRONG_KIND, field, "only groups other fields and has no value");
    }
}

}  // namespace

CPDFStatus plan_fill(CPDFField& shown, const CPDFValue& value, PDF_FILL fill, PDF_WORDS words,
                     const CPDFWidgetBinder& widgets, PDF_FILL_PLAN& plan)
{
    CPDFField& field = value_field(shown);
    plan = PDF_FILL_PLAN();
    plan.field = &field;
    CPDFStatus status;
    if ((field.m_flags & FIELD_READ_ONLY) && fill != PDF_FILL::FORCE)
        status = refuse_fill(PDF_CODE::READ_ONLY, field, "is read-only");
    else
        status = plan_kind(value, words, widgets, plan);
    if (!status.ok() && plan_keep(field, value, plan))
        return {};
    return status;
}

bool plan_keep(CPDFField& shown, const CPDFValue& value, PDF_FILL_PLAN& plan)
{
    CPDFField& field = value_field(shown);
    if (!has_value(field, value))
        return false;
    plan = PDF_FILL_PLAN();
    plan.field = &field;
    plan.action = PDF_FILL_PLAN::KEEP;
    return true;
}

CPDFStatus apply_fill(CPDFXRefTable& xref, const PDF_FILL_PLAN& plan, const CPDFWidgetBinder& widgets,
                      std::vector<CPDFField*>& changed)
{
    FILL_TARGET target = {xref, changed};
    switch (plan.action) {
    case PDF_FILL_PLAN::SET_TEXT:
        apply_text(target, plan);
        break;
    case PDF_FILL_PLAN::SET_BUTTON:
        apply_button(target, plan, widgets);
        break;
    case PDF_FILL_PLAN::SET_OPTIONS:
        apply_choice(target, plan);
        break;
    case PDF_FILL_PLAN::KEEP:
        break;
    }
    if (target.memory.failed())
        return refuse_fill(PDF_CODE::NO_MEMORY, *plan.field, "can't be filled: memory ran out");
    if (target.lost)
        return refuse_fill(PDF_CODE::DAMAGED, *target.lost,
                           "can't be filled: object " + std::to_string(target.lost->m_ref.num) +
                               " is missing or damaged");
    return {};
}

namespace {

constexpr const char* VALUE_KEYS[] = {"V"};
constexpr CPDFKeySet VALUE_KEY_SET(VALUE_KEYS);

bool has_own_value(CPDFXRefTable& xref, const CPDFField& field)
{
    CPDFObj own;
    if (field.m_value.type != PDF_OBJ_NULL)  // which may be the default
        xref.get_entity(own, field.m_ref, &VALUE_KEY_SET);
    return own.dictionary() && own.dict->get_item("V");
}

}  // namespace

void drop_kid_values(FILL_TARGET& target, const CPDFField& field)
{
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        CPDFField* kid = field.m_kids[i];
        if (!kid || &value_field(*kid) == kid)
            continue;
        if (has_own_value(target.xref, *kid))
            store_value(target, *kid, CPDFObj(), nullptr);
        else
            drop_kid_values(target, *kid);
    }
}

void store_value(FILL_TARGET& target, CPDFField& field, const CPDFObj& value, const CPDFObj* indices)
{
    if (target.memory.failed())
        return;
    const PDF_ENTRY_CHANGE changes[] = {{"V", &value}, {"RV", nullptr}, {"I", indices}};
    const PDF_CHANGE_RESULT result = target.xref.change_entries(field.m_ref, changes);
    if (result == PDF_CHANGE_RESULT::NO_DICTIONARY)
        target.lost = &field;
    if (result != PDF_CHANGE_RESULT::STORED)
        return;
    target.changed.push_back(&field);
    field.show_value(value, indices ? indices->array() : nullptr);
    drop_kid_values(target, field);
}
