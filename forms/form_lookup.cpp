#include "core/text.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

constexpr int FIND_LIMIT = 61;
constexpr int GET_LIMIT = 254;

}  // namespace

CPDFField* CPDFAcroForm::find(const PDF_REF& ref)
{
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        CPDFField* found = m_fields[i] ? m_fields[i]->get(ref) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

CPDFField* CPDFAcroForm::find_top(const wchar_t* name, int limit)
{
    wchar_t own[GET_LIMIT + 1];
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        if (!m_fields[i])
            continue;
        m_fields[i]->get_name(own, limit + 1);
        if (ucs_cmp(own, name) == 0)
            return m_fields[i];
    }
    return nullptr;
}

CPDFField* CPDFAcroForm::find(const wchar_t* name)
{
    return name[0] ? find_top(name, FIND_LIMIT) : nullptr;
}

CPDFField* CPDFAcroForm::get_field(const wchar_t* name)
{
    return find_top(name, GET_LIMIT);
}

CPDFField* CPDFAcroForm::get_field(const PDF_String& name)
{
    wchar_t wide[256];
    cvt_text_to_ucs(&name, wide, 255);
    return get_field(wide);
}
