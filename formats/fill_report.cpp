#include "formats/fill_report.h"

#include <algorithm>

#include "core/text.h"
#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "formats/export/json_text.h"
#include "forms/field.h"

namespace {

// What is no UTF-8 was refused for that; JSON tells it with U+FFFD for each such byte.
std::string clean(const std::string& text)
{
    if (is_utf8(text))
        return text;
    std::string out;
    const auto* at = reinterpret_cast<const unsigned char*>(text.data());
    for (const unsigned char* const end = at + text.size(); at < end;) {
        char utf8[4];
        out.append(utf8, static_cast<size_t>(utf8_from_ucs(ucs_from_utf8(at, end), utf8)));
    }
    return out;
}

const char* result_of(const PDF_FILL_PLAN& plan)
{
    if (plan.action == PDF_FILL_PLAN::KEEP)
        return "kept";
    return plan.coerced ? "coerced" : "set";
}

void append_given(std::string& out, const CPDFValue& value)
{
    std::vector<std::string> texts = texts_of(value);
    std::transform(texts.begin(), texts.end(), texts.begin(), clean);
    if (std::holds_alternative<std::vector<std::string>>(value))
        append_json_value(out, {true, true, "", std::move(texts)});
    else if (std::holds_alternative<bool>(value))
        out += texts[0];
    else
        append_json_text(out, texts[0]);
}

// Begins a line.
void append_name(std::string& out, const std::string& name, size_t row)
{
    out += '{';
    if (row)
        out.append("\"row\":").append(std::to_string(row)).append(",");
    out += "\"name\":";
    append_json_text(out, name);
}

}  // namespace

void append_report(std::string& out, CPDFDocument& document, const std::vector<PDF_DATA_ITEM>& items,
                   const std::vector<CPDFField*>& calculated, size_t row)
{
    for (const PDF_DATA_ITEM& item : items) {
        append_name(out, clean(item.entry.name), row);
        if (item.status.ok() && item.is_xfa) {
            out += ",\"result\":\"set\",\"value\":";
            append_given(out, item.entry.value);
        } else if (item.status.ok()) {
            out.append(",\"result\":\"").append(result_of(item.plan)).append("\",\"value\":");
            append_json_value(out, value_text(document.xref(), item.plan.field->m_value));
        } else {
            out += ",\"result\":\"refused\",\"why\":";
            append_json_text(out, clean(item.status.text));
            out += ",\"value\":";
            append_given(out, item.entry.value);
        }
        out += "}\n";
    }
    for (const CPDFField* field : calculated) {
        append_name(out, full_name(*field), row);
        out += ",\"result\":\"calculated\",\"value\":";
        append_json_value(out, value_text(document.xref(), field->m_value));
        out += "}\n";
    }
}
