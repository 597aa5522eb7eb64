// What must hold for any bytes that open as a form.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

// The text that each text field with a value shows, by object number.
inline std::map<uint32_t, std::string> texts_of(CPDFDocument& document)
{
    std::map<uint32_t, std::string> texts;
    for_each_field(document.form(), [&texts](CPDFField& field) {
        if (const PDF_String* value = field.m_type == FIELD_TEXT ? field.get_edit_value() : nullptr)
            texts[field.m_ref.num] = utf8_of(*value);
    });
    return texts;
}

// Sets up to `most` fields. False when one took a value and does not show it.
inline bool set_fields(CPDFDocument& document, size_t most)
{
    const CPDFValue values[] = {"plain (text)", std::string("\xC3\xBE\xC3\xBF\xF0\x9F\x98\x80\0\r", 10), "", true};
    std::vector<CPDFField*> fields;
    for_each_field(document.form(), [&fields, most](CPDFField& field) {
        if (fields.size() < most)
            fields.push_back(&field);
    });
    for (size_t i = 0; i < fields.size(); ++i) {
        const CPDFValue& value = values[i % std::size(values)];
        if (!document.set_value(*fields[i], value, PDF_FILL::FORCE).ok() || fields[i]->m_type != FIELD_TEXT)
            continue;
        const PDF_String* shown = fields[i]->get_edit_value();
        const auto* text = std::get_if<std::string>(&value);
        if (!shown || (text && utf8_of(*shown) != *text))
            return false;
    }
    return true;
}

// Whether every field with a name of its own, or another one that bears it, is found by the full name, and `most` of
// them in the same way where only the named branch is loaded.
inline bool names_lead_to_fields(CPDFDocument& document, CPDFDocument& by_name, size_t most)
{
    std::vector<std::string> names;
    for_each_field(document.form(), [&names](CPDFField& field) {
        if (field.m_name.len > 0)
            names.push_back(full_name(field));
    });
    for (size_t i = 0; i < names.size(); ++i) {
        const CPDFField* found = document.field(names[i]);
        if (!found || full_name(*found) != names[i])
            return false;
        const CPDFField* branch = i < most ? by_name.field(names[i]) : found;
        if (!branch || branch->m_ref.num != found->m_ref.num)
            return false;
    }
    return true;
}

// Opens `bytes`, walks the form, fills up to `most` fields, saves, opens the result. Returns what went wrong, or null.
inline const char* open_form_fault(const std::vector<uint8_t>& bytes, size_t most)
{
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);
    const CPDFStatus status = document.open(bytes);
    if (!status.ok())
        return status.text.empty() ? "the failure has no sentence" : nullptr;
    CPDFDocument by_name;
    by_name.set_rescue(PDF_RESCUE::OFF);
    if (!by_name.open(bytes, PDF_LOAD::NAMED_FIELDS).ok())
        return "the form opens as a whole only";
    if (!names_lead_to_fields(document, by_name, most))
        return "a field is not found by its name";
    if (!set_fields(document, most))
        return "a field does not show the value it took";
    std::vector<uint8_t> saved;
    if (!document.save(saved).ok())
        return "the form can't be saved";
    if (saved.size() < bytes.size() || !std::equal(bytes.begin(), bytes.end(), saved.begin()))
        return "the output does not begin with the input";
    CPDFDocument again;
    again.set_rescue(PDF_RESCUE::OFF);
    if (!again.open(std::move(saved)).ok())
        return "the output can't be opened";
    return texts_of(document) == texts_of(again) ? nullptr : "the output shows other values";
}
