// XML form data: element = '<' name '>' content '</' name '>', or the content alone where the name makes no tag. The
// content is the elements of the kids and then the field's own value.
#include "core/text.h"
#include "forms/acro_form.h"
#include "forms/exchange/form_value.h"
#include "forms/field.h"
#include "forms/field_select.h"
#include "forms/partial_name.h"

namespace {

void append_tag(CPDFDataBuffer& out, const char* open, const char* name)
{
    out.append(open);
    out.append(name);
    out.append(">");
}

void append_list_values(CPDFDataBuffer& out, const CPDFField& list)
{
    for (int32_t i = 0; i < list.m_sel_cnt; ++i) {
        const int32_t index = list.m_sels[i];
        if (!list.m_opts || index < 0 || index >= list.m_opt_cnt)
            continue;
        out.append("<value>");
        out.append(list.m_opts[index].val, cvt_utoxml);
        out.append("</value>\r\n");
    }
}

void append_flat_value(CPDFDataBuffer& out, const CPDFField& field)
{
    if (!is_radio_group(field))
        append_value(out, field, cvt_utoxml);
    else if (field.m_value.type == PDF_OBJ_NAME)
        out.append(field.m_value.name);
}

void append_nested_value(CPDFDataBuffer& out, const CPDFField& field)
{
    if (field.m_type != FIELD_CHOICE)
        append_flat_value(out, field);
    else if (!(field.m_flags & FIELD_COMBO))
        append_list_values(out, field);
    else if (const PDF_String* val = selected_export_value(field))
        out.append(*val, cvt_utoxml);
    else if (field.m_value.type == PDF_OBJ_STRING)
        out.append(field.m_value.str, cvt_utoxml);
}

void append_flat(CPDFDataBuffer& out, CPDFField& field)
{
    if (field.m_type == FIELD_UNKNOWN || is_push_button(field))
        return;
    char name[PARTIAL_NAME_SIZE];
    partial_name(field, name);
    if (is_named(name))
        append_tag(out, "<", name);
    append_flat_value(out, field);
    if (is_named(name))
        append_tag(out, "</", name);
}

void append_nested(CPDFDataBuffer& out, CPDFField& field)
{
    if (is_push_button(field))
        return;
    char name[PARTIAL_NAME_SIZE];
    partial_name(field, name);
    if (is_named(name))
        append_tag(out, "<", name);
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            append_nested(out, *field.m_kids[i]);
    }
    append_nested_value(out, field);
    if (is_named(name))
        append_tag(out, "</", name);
}

char* xml_of(CPDFField& field, int& len, void (*append)(CPDFDataBuffer&, CPDFField&))
{
    CPDFDataBuffer out;
    len = 0;
    append(out, field);
    return out.size() > 0 ? out.release(len) : nullptr;
}

}  // namespace

char* CPDFField::get_form_xml(int& len)
{
    return xml_of(*this, len, append_flat);
}

char* CPDFField::get_form_xml2(int& len)
{
    return xml_of(*this, len, append_nested);
}

char* CPDFAcroForm::get_url_xml(const CPDFArray* fields, int flags)
{
    const VXFailureCheck memory;  // a field that was not found for want of it is no field to leave out
    CPDFDataBuffer out;
    const bool all = selects_all(fields, flags);
    const bool enclosed = all && !m_has_xfa;
    out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    if (enclosed)
        out.append("<fields>");
    const bool found = for_each_selected_field(
        *this, fields, flags, [&](CPDFField& field) { all ? append_nested(out, field) : append_flat(out, field); });
    if (enclosed)
        out.append("</fields>");
    int len = 0;
    return found && !memory.failed() ? out.release(len) : nullptr;
}
