#include "forms/exchange/form_value.h"

namespace {

// The state goes out as it is: it is compared with state names, which are bytes, and never shown.
void append_check_value(CPDFDataBuffer& out, const CPDFField& field, FORM_ENCODER encode)
{
    const bool unset = field.m_value.type == PDF_OBJ_NULL;
    const CPDFObj& state = unset ? field.m_def_value : field.m_value;
    if (state.type == PDF_OBJ_NULL || field.m_value.is_name("Off"))
        out.append("Off");
    else if (field.m_opt_cnt > 0)
        out.append(field.m_opts[0].val, encode, FORM_BUTTON_MAX);
    else if (state.type == PDF_OBJ_NAME)
        out.append(state.name);
    else if (!unset && state.type == PDF_OBJ_STRING)
        out.append(reinterpret_cast<const char*>(state.str.buf));  // up to a 0 byte, which would end all of the text
}

}  // namespace

const PDF_String* export_value(const CPDFField& field, int32_t index)
{
    if (!field.m_opts || index < 0 || index >= field.m_opt_cnt)
        return nullptr;
    const PDF_String& val = field.m_opts[index].val;
    return val.buf ? &val : nullptr;
}

const PDF_String* selected_export_value(const CPDFField& field)
{
    const bool selected = field.m_type == FIELD_CHOICE && (field.m_flags & FIELD_COMBO) && field.m_sel_cnt > 0;
    return selected ? export_value(field, field.m_sels[0]) : nullptr;
}

void append_value(CPDFDataBuffer& out, const CPDFField& field, FORM_ENCODER encode)
{
    if (field.m_type == FIELD_TEXT && field.m_value.type == PDF_OBJ_STRING)
        out.append(field.m_value.str, encode);
    else if (field.m_type == FIELD_BUTTON && !(field.m_flags & (FIELD_RADIO | FIELD_PUSH_BUTTON)))
        append_check_value(out, field, encode);
    else if (const PDF_String* val = selected_export_value(field))
        out.append(*val, encode);
}
