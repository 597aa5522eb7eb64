#include "tools/fill/fill_report.h"

#include <algorithm>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "formats/export/json_text.h"
#include "forms/field.h"
#include "tools/terminal_text.h"

namespace {

std::string clean(const std::string& text)
{
    return is_utf8(text) ? text : printable_lines(text);
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
        if (item.status.ok()) {
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
