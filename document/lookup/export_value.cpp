#include "document/lookup/export_value.h"

#include <algorithm>

#include "core/dictionary.h"
#include "document/lookup/held_value.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

// A list that can be no list of options, or a text, has one value at most.
void drop_list(PDF_VALUE_TEXT& value)
{
    value.present = value.present && !value.is_list;
}

}  // namespace

bool CPDFExportValues::is_exported(const CPDFField& field)
{
    return field.m_name.len > 0 && field_kind(field).takes_value;
}

PDF_VALUE_TEXT CPDFExportValues::value_of(const CPDFField& field)
{
    PDF_VALUE_TEXT value;
    if (field.m_value.type != PDF_OBJ_STREAM)
        value = own_value(field);
    if (field.m_type == FIELD_TEXT) {
        read_text(field, value);
    } else if (field.m_type == FIELD_CHOICE) {
        read_choice(field, value);
    } else {
        drop_list(value);
        value.present = value.present && !value.text.empty();
    }
    return value;
}

void CPDFExportValues::read_text(const CPDFField& field, PDF_VALUE_TEXT& value)
{
    drop_list(value);
    if (field.m_value.type != PDF_OBJ_STREAM || over_limit())
        return;
    value.present = true;
    value.text = stream_text(m_xref, *field.m_value.stream);
    m_stream_bytes += value.text.size() + field.m_value.stream->data_len;
}

void CPDFExportValues::read_choice(const CPDFField& field, PDF_VALUE_TEXT& value)
{
    if (!value.present)
        return;
    std::vector<std::string>& words = value.items;
    if (!value.is_list)
        words.push_back(std::move(value.text));
    const CPDFFieldOptions list(field);
    std::vector<int32_t> options;
    for (const std::string& word : words) {
        const int32_t option = m_options.find(list, word);
        if (option >= 0)
            options.push_back(option);
    }
    // Free text, and what is no option by mistake, stays as it is.
    if (options.size() == words.size()) {
        std::sort(options.begin(), options.end());
        options.erase(std::unique(options.begin(), options.end()), options.end());
        words.clear();
        for (const int32_t option : options)
            words.push_back(list.value(option));
    }
    const bool is_none = words.empty() || (words.size() == 1 && words.front().empty() && options.empty());
    value.is_list = words.size() > 1;
    if (value.is_list)
        return;
    value.present = !is_none || field.m_def_value.type != PDF_OBJ_NULL;
    value.text = words.empty() ? "" : std::move(words.front());
    words.clear();
}
