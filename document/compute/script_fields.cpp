#include "document/compute/script_fields.h"

#include "document/lookup/value_text.h"
#include "forms/field.h"

namespace {

PDF_VALUE_TEXT read_value(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields)
{
    const bool exports = field.m_type == FIELD_BUTTON && field.m_opt_cnt > 0 && field.m_value.type == PDF_OBJ_NAME;
    PDF_VALUE_TEXT value;
    if (exports)
        value.text = fields.export_value(field);
    else if (field.m_value.type == PDF_OBJ_STREAM)
        value.text = stream_text(*field.m_xref, *field.m_value.stream);
    else
        value = value_text(*field.m_xref, field.m_value);
    return value;
}

}  // namespace

std::vector<std::string> script_values_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields)
{
    PDF_VALUE_TEXT value = read_value(field, fields);
    if (value.is_list)
        return std::move(value.items);
    return {std::move(value.text)};
}

std::string script_value_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields)
{
    return read_value(field, fields).joined();
}
