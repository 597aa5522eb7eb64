#include "document/fill/filler.h"

#include <algorithm>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/fill/filler_internal.h"
#include "document/lookup/field_text.h"
#include "document/lookup/held_value.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

std::vector<std::string> texts_of(const CPDFValue& value)
{
    if (const bool* on = std::get_if<bool>(&value))
        return {*on ? "true" : "false"};
    if (const std::string* text = std::get_if<std::string>(&value))
        return {*text};
    return std::get<std::vector<std::string>>(value);
}

std::string quoted_list(const std::vector<std::string>& words)
{
    constexpr size_t MOST = 12;
    std::string list;
    for (size_t i = 0; i < words.size() && i < MOST; ++i) {
        const bool last = i + 1 == words.size();
        list += i == 0 ? "" : last ? " or " : ", ";
        list += in_quotes(words[i]);
    }
    return words.size() > MOST ? list + " or one of " + std::to_string(words.size() - MOST) + " more" : list;
}

namespace {

// Whether `value` says what the field has; options count in any order.
bool has_value(const CPDFField& field, const CPDFValue& value)
{
    if (!field_kind(field).takes_value || std::holds_alternative<bool>(value))
        return false;
    const std::string* text = std::get_if<std::string>(&value);
    const CPDFObj& stored = field.m_value;
    if (stored.type == PDF_OBJ_STREAM)
        return text && stream_text(*field.m_xref, *stored.stream) == *text;
    const PDF_VALUE_TEXT held = own_value(field);
    if (!held.present)
        return text && text->empty();
    std::vector<std::string> has = held.is_list ? held.items : std::vector<std::string>{held.text};
    std::vector<std::string> given = texts_of(value);
    if (field.m_type == FIELD_CHOICE) {
        std::sort(has.begin(), has.end());
        std::sort(given.begin(), given.end());
    }
    return has == given;
}

// `status`, which ends a sentence, with the field that it is about.
CPDFStatus about_field(const CPDFField& field, CPDFStatus status)
{
    if (!status.ok())
        status.text = "field " + in_quotes(full_name(field)) + " " + status.text;
    return status;
}

}  // namespace

PDF_FIELD_SHAPE shape_of(const CPDFField& field, const CPDFWidgetBinder& widgets)
{
    PDF_FIELD_SHAPE shape = {&field_kind(field), effective_flags(field), 0, {}, {}};
    if (field.m_type == FIELD_TEXT)
        shape.max_length = max_length(field);
    else if (field.m_type == FIELD_CHOICE)
        shape.options = CPDFFieldOptions(field);
    else if (field.m_type == FIELD_BUTTON)
        shape.buttons = button_choices(field, widgets);
    return shape;
}

CPDFStatus plan_value(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_WORDS words, PDF_FILL_PLAN& plan)
{
    switch (shape.kind->id) {
    case KIND_TEXT:
        return plan_text(shape, value, plan);
    case KIND_COMBO:
    case KIND_LIST:
        return plan_choice(shape, value, plan);
    case KIND_CHECK:
    case KIND_RADIO:
        return plan_button(shape, value, words, plan);
    case KIND_PUSH:
        return refuse_value("is a push button, which has no value");
    case KIND_SIGNATURE:
        return refuse_value("is a signature field, which can't be filled");
    default:
        return refuse_value("only groups other fields and has no value");
    }
}

void make_value(const PDF_FIELD_SHAPE& shape, const PDF_FILL_PLAN& plan, CPDFObj& out)
{
    if (plan.action == PDF_FILL_PLAN::SET_BUTTON) {
        const bool on = plan.button >= 0;
        out.set_name(on ? shape.buttons[static_cast<size_t>(plan.button)].state.c_str() : PDF_STATE_OFF);
    } else if (plan.action == PDF_FILL_PLAN::SET_OPTIONS && plan.options.size() == 1) {
        shape.options.make_value(plan.options[0], out);
    } else if (plan.action == PDF_FILL_PLAN::SET_OPTIONS && plan.options.size() > 1) {
        CPDFArray* list = out.set_array();
        for (const int option : plan.options) {
            CPDFObj value;
            shape.options.make_value(option, value);
            if (list)
                list->append_str(value.str.buf, value.str.len);
        }
    } else {
        PDF_String text = pdf_string_of(plan.text);
        out.set_string(text.buf, text.len);
        text.release();
    }
}

CPDFStatus plan_fill(CPDFField& shown, const CPDFValue& value, PDF_FILL fill, PDF_WORDS words,
                     const CPDFWidgetBinder& widgets, PDF_FILL_PLAN& plan)
{
    CPDFField& field = value_field(shown);
    plan = PDF_FILL_PLAN();
    plan.field = &field;
    CPDFStatus status;
    if ((effective_flags(field) & FIELD_READ_ONLY) && fill != PDF_FILL::FORCE)
        status = refuse_value("is read-only", PDF_CODE::READ_ONLY);
    else
        status = plan_value(shape_of(field, widgets), value, words, plan);
    if (!status.ok() && plan_keep(field, value, plan))
        return {};
    return about_field(field, std::move(status));
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
    PDF_FILL_TARGET target = {xref, changed};
    CPDFObj text;
    switch (plan.action) {
    case PDF_FILL_PLAN::SET_TEXT:
        make_value({}, plan, text);
        store_value(target, *plan.field, text, nullptr);
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
        return about_field(*plan.field, refuse_value("can't be filled: memory ran out", PDF_CODE::NO_MEMORY));
    if (!target.lost)
        return {};
    const std::string object = std::to_string(target.lost->m_ref.num);
    return about_field(*target.lost,
                       refuse_value("can't be filled: object " + object + " is missing or damaged", PDF_CODE::DAMAGED));
}

namespace {

constexpr CPDFKeySet VALUE_KEY_SET{"V"};

bool has_own_value(CPDFXRefTable& xref, const CPDFField& field)
{
    CPDFObj own;
    if (field.m_value.type != PDF_OBJ_NULL)  // which may be the default
        xref.get_entity(own, field.m_ref, &VALUE_KEY_SET);
    return own.dictionary() && own.dict->get_item("V");
}

}  // namespace

void drop_kid_values(PDF_FILL_TARGET& target, const CPDFField& field)
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

void store_value(PDF_FILL_TARGET& target, CPDFField& field, const CPDFObj& value, const CPDFObj* indices)
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
