// The values that URL-encoded and XML form data share.
#pragma once

#include "forms/exchange/data_buffer.h"
#include "forms/field.h"

inline bool is_push_button(const CPDFField& field)
{
    return field.m_type == FIELD_BUTTON && (field.m_flags & FIELD_PUSH_BUTTON);
}

inline bool is_radio_group(const CPDFField& field)
{
    return field.m_type == FIELD_BUTTON && (field.m_flags & FIELD_RADIO);
}

// The export value of option `index`, or null when there is no such option or it has no bytes.
const PDF_String* export_value(const CPDFField& field, int32_t index);

// The export value of the first selected option of a combo box, or null.
const PDF_String* selected_export_value(const CPDFField& field);

// Appends the value of a text field, a check box or a combo box; nothing for the other kinds and where there is no value.
void append_value(CPDFDataBuffer& out, const CPDFField& field, FORM_ENCODER encode);
