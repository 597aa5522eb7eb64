#include "engine/sign.h"
#include "forms/field.h"

int CPDFField::is_signed()
{
    return m_type == FIELD_SIGNATURE && m_sign && m_sign->m_data_cnt > 0;
}

int CPDFField::has_sign()
{
    if (is_signed())
        return 1;
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (m_kids[i] && m_kids[i]->has_sign())
            return 1;
    }
    return 0;
}
