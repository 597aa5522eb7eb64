// The partial name of a field as paths and XML tags spell it.
#pragma once

#include <cstring>

#include "core/text.h"
#include "forms/field.h"

// The index suffix rule: a text that ends in ']' is cut at its last '['; without one, or with one at the front, it is cut
// to nothing. Returns the length that stays.
template <typename Char>
int without_index_suffix(const Char* text, int len)
{
    if (len == 0 || text[len - 1] != ']')
        return len;
    int at = len - 1;
    while (at > 0 && text[at] != '[')
        --at;
    return at;
}

constexpr int PARTIAL_NAME_SIZE = 255;  // bytes, terminator included

// Writes the partial name of `field` in XML text, at most 127 characters and 254 bytes, without its index suffix. Returns
// the length; 0 when the name is empty or nothing but a suffix.
inline int partial_name(const CPDFField& field, char (&out)[PARTIAL_NAME_SIZE])
{
    cvt_str2xml(field.m_name, out, PARTIAL_NAME_SIZE);
    const int len = without_index_suffix(out, static_cast<int>(std::strlen(out)));
    out[len] = 0;
    return len;
}

// Whether a field with this partial name stands for a step of a path and for an XML element; others only hold their kids.
inline bool is_named(const char* partial)
{
    return *partial && *partial != '#';
}
