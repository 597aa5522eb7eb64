#include "document/compute/script_fields.h"

#include "document/lookup/value_text.h"
#include "forms/field.h"

namespace {

bool has_export_values(const CPDFField& field)
{
    return field.m_type == FIELD_BUTTON && field.m_opt_cnt > 0 && field.m_value.type == PDF_OBJ_NAME;
}

}  // namespace

std::vector<std::string> script_values_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields)
{
    if (has_export_values(field))
        return {fields.export_value(field)};
    if (field.m_value.type == PDF_OBJ_STREAM)
        return {stream_text(*field.m_xref, *field.m_value.stream)};
    PDF_VALUE_TEXT value = value_text(*field.m_xref, field.m_value);
    if (value.is_list)
        return std::move(value.items);
    return {std::move(value.text)};
}

std::string script_value_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields)
{
    if (has_export_values(field))
        return fields.export_value(field);
    if (field.m_value.type == PDF_OBJ_STREAM)
        return stream_text(*field.m_xref, *field.m_value.stream);
    return value_text(*field.m_xref, field.m_value).joined();
}
