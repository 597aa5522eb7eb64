// What must hold for a form that is changed, saved and opened again.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "document/document.h"
#include "document/fill/filler.h"
#include "document/lookup/field_text.h"
#include "file/syntax/serialize.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "fuzz/fuzz_bytes.h"

// All that is listed of one field.
struct FIELD_RECORD {
    uint32_t num;
    std::string name;
    PDF_FIELD_KIND_ID kind;
    std::string value;
};

inline std::string value_text(const CPDFObj& value)
{
    std::string text;
    write_object(text, value);
    return text;
}

inline std::vector<FIELD_RECORD> records_of(CPDFDocument& document)
{
    std::vector<FIELD_RECORD> records;
    for_each_field(document.form(), [&records](const CPDFField& field) {
        records.push_back({field.m_ref.num, full_name(field), field_kind(field).id, value_text(field.m_value)});
    });
    return records;
}

inline std::vector<CPDFField*> first_fields(CPDFDocument& document, size_t most)
{
    std::vector<CPDFField*> fields;
    for_each_field(document.form(), [&fields, most](CPDFField& field) {
        if (fields.size() < most)
            fields.push_back(&field);
    });
    return fields;
}

// A value that a field of this kind may take; `choice` picks one.
inline CPDFValue value_for(CPDFDocument& document, const CPDFField& field, size_t choice)
{
    const CPDFValue texts[] = {"plain (text)", std::string("\xC3\xBE\xC3\xBF\xF0\x9F\x98\x80\0\r", 10), "",
                               "1234567890 \xD7\x90\xD7\x91 lines\nof text"};
    const PDF_FIELD_KIND_ID kind = field_kind(field).id;
    if (kind == KIND_CHECK)
        return choice % 3 != 2;
    if (kind == KIND_RADIO) {
        const std::vector<PDF_BUTTON_CHOICE> choices = document.choices_of(field);
        return choices.empty() ? CPDFValue("Off") : choices[choice % choices.size()].state;
    }
    const CPDFFieldOptions options(field);
    if ((kind != KIND_COMBO && kind != KIND_LIST) || options.count() == 0)
        return texts[choice % std::size(texts)];
    const auto pick = [&](size_t at) { return options.value(static_cast<int32_t>(at % options.count())); };
    if (kind == KIND_LIST && choice % 2)
        return std::vector<std::string>{pick(choice), pick(choice / 2)};
    return pick(choice);
}

// Gives the field the value. Returns what went wrong, or null; a refusal with a sentence is not wrong.
inline const char* set_fault(CPDFDocument& document, CPDFField& field, const CPDFValue& value)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status = document.check_value(field, value, PDF_FILL::FORCE, plan);
    if (status.ok())
        status = document.apply(plan);
    if (!status.ok())
        return status.text.empty() ? "a refusal has no sentence" : nullptr;
    if (plan.action == PDF_FILL_PLAN::SET_TEXT && plan.field->m_type == FIELD_TEXT) {
        const PDF_String* shown = plan.field->get_edit_value();
        return shown && utf8_of(*shown) == plan.text ? nullptr : "a text field does not show the text it took";
    }
    const char* state = plan.field->m_value.name_text();
    if (plan.action != PDF_FILL_PLAN::SET_BUTTON || plan.button < 0)
        return nullptr;
    return state && std::string_view(state) != "Off" ? nullptr : "a button that was set is off";
}

// Fills up to `most` fields, each by its kind.
inline const char* fill_fault(CPDFDocument& document, size_t most, size_t choice)
{
    const std::vector<CPDFField*> fields = first_fields(document, most);
    for (size_t i = 0; i < fields.size(); ++i) {
        if (const char* wrong = set_fault(document, *fields[i], value_for(document, *fields[i], choice + i)))
            return wrong;
    }
    return nullptr;
}

// A string that the file does not end takes in what is appended to the file.
inline bool is_same_or_grown(const std::string& before, const std::string& after)
{
    return before == after ||
           (before.size() > 1 && after.starts_with(std::string_view(before).substr(0, before.size() - 1)));
}

inline bool is_same(const FIELD_RECORD& before, const FIELD_RECORD& after)
{
    return before.num == after.num && before.kind == after.kind && is_same_or_grown(before.name, after.name) &&
           is_same_or_grown(before.value, after.value);
}

// Saves the document, which was opened from `bytes`, and opens what came out of it.
inline const char* save_fault(CPDFDocument& document, const std::vector<uint8_t>& bytes, std::string_view password = {})
{
    std::vector<uint8_t> saved;
    if (!document.save(saved).ok())
        return "the form can't be saved";
    const std::vector<FIELD_RECORD> records = records_of(document);
    if (saved.size() < bytes.size() || !std::equal(bytes.begin(), bytes.end(), saved.begin()))
        return "the output does not begin with the input";
    CPDFDocument again;
    again.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!again.open(std::move(saved), PDF_LOAD::WHOLE_FORM, password).ok())
        return "the output can't be opened";
    const std::vector<FIELD_RECORD> found = records_of(again);
    if (found.size() != records.size())
        return "the output has another number of fields";
    for (size_t i = 0; i < found.size(); ++i) {
        if (is_same(records[i], found[i]))
            continue;
        std::fprintf(stderr, "field %u \"%s\" is %s, in the output %u \"%s\" is %s\n", records[i].num,
                     records[i].name.c_str(), records[i].value.c_str(), found[i].num, found[i].name.c_str(),
                     found[i].value.c_str());
        return "the output has other fields or values";
    }
    return nullptr;
}
