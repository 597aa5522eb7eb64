#include "document/field_text.h"

#include <algorithm>
#include <vector>

#include "core/alloc.h"
#include "core/text.h"
#include "forms/field.h"

namespace {

constexpr size_t SMALL_TEXT = 256;

// Room for the name of a field with all its ancestors, in characters.
size_t name_room(const CPDFField& field)
{
    constexpr size_t SEPARATOR_AND_NUMBER = 12;
    size_t room = 1;
    for (const CPDFField* at = &field; at; at = at->m_parent)
        room += static_cast<size_t>(std::max(at->m_name.len, 0)) + SEPARATOR_AND_NUMBER;
    return room;
}

std::string utf8_of_wide(const wchar_t* text, int len)
{
    std::string out;
    out.reserve(static_cast<size_t>(len));
    for (int i = 0; i < len; ++i) {
        char bytes[4];
        out.append(bytes, static_cast<size_t>(utf8_from_ucs(static_cast<uint32_t>(text[i]), bytes)));
    }
    return out;
}

// Calls `read(buf, size)`, which returns a length, with a buffer of `room` characters.
template <typename Read>
std::string read_wide(size_t room, Read&& read)
{
    if (room <= SMALL_TEXT) {
        wchar_t small[SMALL_TEXT];
        return utf8_of_wide(small, read(small, static_cast<int>(SMALL_TEXT)));
    }
    std::vector<wchar_t> large(room);
    return utf8_of_wide(large.data(), read(large.data(), static_cast<int>(room)));
}

// Whether `c` stands for itself in PDFDocEncoding and in no other way.
bool is_plain(uint32_t c)
{
    return (c >= 0x20 && c < 0x7F) || c == '\t' || c == '\n' || c == '\r' || (c >= 0xA1 && c <= 0xFF && c != 0xAD);
}

}  // namespace

std::string full_name(const CPDFField& field)
{
    std::string name = field.m_parent ? full_name(*field.m_parent) : std::string();
    if (field.m_name.len <= 0)
        return name;
    if (!name.empty())
        name += '.';
    return name + utf8_of(field.m_name);
}

std::string full_name_with_no(const CPDFField& field)
{
    return field.m_name.len > 0 ? full_name(field) : full_name(field) + '#' + std::to_string(field.m_index);
}

std::string full_name_without_index(const CPDFField& field)
{
    auto& reader = const_cast<CPDFField&>(field);
    return read_wide(name_room(field), [&](wchar_t* buf, int size) { return reader.get_full_name(buf, size); });
}

std::string utf8_of(const PDF_String& text)
{
    const auto is_ascii = [](unsigned char c) { return c >= 0x20 && c < 0x7F; };
    if (text.len > 0 && std::all_of(text.buf, text.buf + text.len, is_ascii))
        return {reinterpret_cast<const char*>(text.buf), static_cast<size_t>(text.len)};
    const auto room = static_cast<size_t>(std::max(text.len, 0)) + 1;
    return read_wide(room, [&](wchar_t* buf, int size) { return cvt_text_to_ucs(&text, buf, size - 1); });
}

PDF_String pdf_string_of(const std::string& text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = p + text.size();
    std::vector<wchar_t> wide;
    wide.reserve(text.size() + 1);
    bool plain = true;
    while (p < end) {
        const uint32_t c = ucs_from_utf8(p, end);
        plain = plain && is_plain(c);
        wide.push_back(static_cast<wchar_t>(c));
    }
    PDF_String out = {0, nullptr};
    if (plain) {
        const std::vector<unsigned char> bytes(wide.begin(), wide.end());
        out.assign(bytes.empty() ? reinterpret_cast<const unsigned char*>("") : bytes.data(), static_cast<int32_t>(bytes.size()));
        return out;
    }
    wide.push_back(0);
    out.init(wide.data(), 1);
    return out;
}
