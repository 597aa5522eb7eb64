#include <algorithm>
#include <cstring>

#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "forms/field.h"
#include "forms/partial_name.h"

namespace {

int keep_segment(wchar_t*, int len)
{
    return len;
}

int trim_segment(wchar_t* segment, int len)
{
    return without_index_suffix(segment, len);
}

const CPDFField* nearest_named(const CPDFField* field)
{
    while (field && field->m_name.len <= 0)
        field = field->m_parent;
    return field;
}

// Writes a partial name into `size` characters. The length is the reader's: a 0 character inside the name ends it.
int put_name(const PDF_String* name, wchar_t* buf, int size)
{
    cvt_text_to_ucs(name, buf, size - 1);
    return ucs_len(buf);
}

// Writes '#' and the digits of `index`, cut where `size` characters with the terminator end.
int put_number(wchar_t* buf, int size, int32_t index)
{
    char text[12] = "#";
    const int count = 1 + ansi_from_u32(text + 1, static_cast<unsigned>(index));
    const int fits = std::min(count, size - 1);
    for (int i = 0; i < fits; ++i)
        buf[i] = static_cast<wchar_t>(text[i]);
    buf[fits] = 0;
    return fits;
}

}  // namespace

CPDFField* CPDFField::get(const char* name)
{
    char own[PARTIAL_NAME_SIZE];
    const auto len = static_cast<size_t>(partial_name(*this, own));
    const char* rest = name;
    if (is_named(own) && std::strncmp(name, own, len) == 0) {
        if (name[len] == 0)
            return this;
        if (name[len] != '.')
            return nullptr;
        rest = name + len + 1;
    }
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        CPDFField* found = m_kids[i] ? m_kids[i]->get(rest) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

CPDFField* CPDFField::get(const PDF_REF& ref)
{
    if (ref.num == m_ref.num)
        return this;
    for (int32_t i = 0; i < m_widget_cnt; ++i) {
        if (m_widgets[i].num == ref.num)
            return this;
    }
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        CPDFField* found = m_kids[i] ? m_kids[i]->get(ref) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

int CPDFField::get_name(wchar_t* buf, int size)
{
    if (size <= 0)
        return 0;
    const CPDFField* named = nearest_named(this);
    return put_name(named ? &named->m_name : nullptr, buf, size);
}

int CPDFField::get_name_with_no(wchar_t* buf, int size)
{
    if (m_name.len > 0 || size <= 0)
        return get_name(buf, size);
    const int inherited = m_parent ? m_parent->get_name(buf, size) : 0;
    return inherited + put_number(buf + inherited, size - inherited, m_index);
}

int CPDFField::get_full_name(wchar_t* buf, int size)
{
    return full_name(buf, size, trim_segment);
}

int CPDFField::get_full_name2(wchar_t* buf, int size)
{
    return full_name(buf, size, keep_segment);
}

int CPDFField::full_name(wchar_t* buf, int size, int (*trim)(wchar_t* segment, int len))
{
    if (size <= 0)
        return 0;
    const int prefix = m_parent ? m_parent->full_name(buf, size, trim) : 0;
    wchar_t* segment = buf + prefix;
    const int room = size - prefix;
    int len = 0;
    if (prefix == 0) {
        len = put_name(&m_name, segment, room);
    } else if (m_name.len <= 0) {
        len = put_number(segment, room, m_index);
    } else if (room >= 2) {
        segment[0] = L'.';
        len = 1 + put_name(&m_name, segment + 1, room - 1);
    }
    // A partial name that begins with '#' marks a container and does not count below a named field.
    if (len >= 2 && segment[0] == L'.' && segment[1] == L'#')
        len = 0;
    len = trim(segment, len);
    segment[len] = 0;
    return prefix + len;
}

void CPDFField::set_name(const wchar_t* name)
{
    m_name.release();
    m_name.init(name, 1);
    CPDFObj text;
    text.set_string(m_name.buf, m_name.len);
    store_entry("T", text);
}
