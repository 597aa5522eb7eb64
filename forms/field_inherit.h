// What a field takes from the fields above it when its own dictionary is silent (ISO 32000-2, 12.7.4.1).
#pragma once

#include "forms/field.h"

// The first of `field` and the fields above it, nearest first, for which `found(const CPDFField&)` holds; null when none.
template <typename Found>
const CPDFField* nearest_field(const CPDFField& field, Found&& found)
{
    const CPDFField* at = &field;
    while (at && !found(*at))
        at = at->m_parent;
    return at;
}

// The field whose value `field` shows: itself, or for a field without a name the nearest one above it that has a name and
// the same type.
inline CPDFField& value_field(CPDFField& field)
{
    CPDFField* at = &field;
    while (at->m_name.len <= 0 && at->m_parent && at->m_parent->m_type == at->m_type)
        at = at->m_parent;
    return *at;
}

// The most characters that a text field takes, 0 when there is no limit. A group without a type limits the texts under it.
inline int32_t max_length(const CPDFField& field)
{
    const auto limit = [](const CPDFField& at) { return at.m_max_len > 0 ? at.m_max_len : at.m_group_max_len; };
    const CPDFField* holder = nearest_field(field, [&limit](const CPDFField& at) { return limit(at) > 0; });
    return holder ? limit(*holder) : 0;
}

// The flags that count for a field: its own, or those of the nearest field above it that has some. What makes the kind of a
// field is not taken from a group without a type, since m_flags does not have it either.
inline uint32_t effective_flags(const CPDFField& field)
{
    constexpr uint32_t KIND_FLAGS = FIELD_RADIO | FIELD_PUSH_BUTTON | FIELD_COMBO;
    const CPDFField* holder = nearest_field(field, [](const CPDFField& at) { return at.m_has_flags; });
    return holder && holder->m_type == FIELD_UNKNOWN ? field.m_flags | (holder->m_flags & ~KIND_FLAGS) : field.m_flags;
}
