#include "forms/field.h"

void CPDFField::set_edit_value(const PDF_String* value)
{
    if (m_type != FIELD_TEXT)
        return;
    CPDFObj text;  // aside, for `value` may be the field's own
    text.set_string(value->buf, value->len);
    m_value.take(text);
    store_entry("V", m_value);
}

void CPDFField::set_edit_appearnce(const PDF_String* da)
{
    if (m_type != FIELD_TEXT)
        return;
    CPDFObj text;
    text.set_string(da->buf, da->len);
    m_da.take(text);
    store_entry("DA", m_da);
}

PDF_String* CPDFField::get_edit_value()
{
    for (CPDFField* field = this; field && field->m_type == FIELD_TEXT; field = field->m_parent) {
        if (field->m_value.type == PDF_OBJ_STRING)
            return &field->m_value.str;
    }
    return nullptr;
}

PDF_String* CPDFField::get_edit_apperance()
{
    const bool has_text = m_type == FIELD_TEXT || m_type == FIELD_CHOICE;
    return has_text && m_da.type == PDF_OBJ_STRING ? &m_da.str : nullptr;
}
