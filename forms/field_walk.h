// The one way to walk the whole field tree.
#pragma once

#include <cstddef>

#include "forms/acro_form.h"
#include "forms/field.h"

// Calls `visit(CPDFField&)` for `field` and every field under it, each before its kids. The tree must not change
// meanwhile; its depth is bounded by loading.
template <typename Visit>
void for_each_field(CPDFField& field, Visit&& visit)
{
    visit(field);
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        if (field.m_kids[i])
            for_each_field(*field.m_kids[i], visit);
    }
}

// The same for every field of the form, in tree order.
template <typename Visit>
void for_each_field(CPDFAcroForm& form, Visit&& visit)
{
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        if (form.m_fields[i])
            for_each_field(*form.m_fields[i], visit);
    }
}

// How many fields the form has.
inline size_t count_fields(CPDFAcroForm& form)
{
    size_t count = 0;
    for_each_field(form, [&count](const CPDFField&) { ++count; });
    return count;
}
