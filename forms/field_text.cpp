#include "forms/field.h"

void CPDFField::set_edit_value(const PDF_String* value)
{
    if (m_type != FIELD_TEXT)
        return;
    m_value.set_string(value->buf, value->len);
    store_entry("V", m_value);
}

PDF_String* CPDFField::get_edit_value()
{
    for (CPDFField* field = this; field && field->m_type == FIELD_TEXT; field = field->m_parent) {
        if (field->m_value.type == PDF_OBJ_STRING)
            return &field->m_value.str;
    }
    return nullptr;
}
