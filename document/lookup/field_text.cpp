#include "document/lookup/field_text.h"

#include <algorithm>
#include <vector>

#include "core/alloc.h"
#include "core/limits.h"
#include "core/text.h"
#include "forms/acro_form.h"
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

// What a full name takes of a partial one. Escape sequences may make it shorter than its text; what then stands beyond is not
// read, as thousands of fields may share a name of megabytes.
std::string utf8_of_partial(const PDF_String& name)
{
    constexpr size_t LONGEST = 4 * LIMIT_FULL_NAME;
    const auto len = std::min(static_cast<size_t>(name.len), LONGEST);
    return utf8_of({static_cast<int32_t>(len), name.buf});
}

// The most bytes of `text`, up to `size`, that end with a whole character.
size_t whole_characters(std::string_view text, size_t size)
{
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size;
    return size;
}

// Whether `c` stands for itself in PDFDocEncoding and in no other way.
bool is_plain(uint32_t c)
{
    return (c >= 0x20 && c < 0x7F) || c == '\t' || c == '\n' || c == '\r' || (c >= 0xA1 && c <= 0xFF && c != 0xAD);
}

}  // namespace

std::string full_name(const CPDFField& field)
{
    constexpr size_t LONGEST_CHARACTER = 4;
    std::string name = field.m_parent ? full_name(*field.m_parent) : std::string();
    if (field.m_name.len <= 0 || name.size() + LONGEST_CHARACTER > LIMIT_FULL_NAME)
        return name;
    if (!name.empty())
        name += '.';
    name += utf8_of_partial(field.m_name);
    if (name.size() > LIMIT_FULL_NAME)
        name.resize(whole_characters(name, LIMIT_FULL_NAME));
    return name;
}

std::string full_name_without_index(const CPDFField& field)
{
    auto& reader = const_cast<CPDFField&>(field);
    const size_t room = std::min(name_room(field), LIMIT_FULL_NAME);
    return read_wide(room, [&](wchar_t* buf, int size) { return reader.get_full_name(buf, size); });
}

std::string CPDFNumberedNames::name_of(const CPDFField& field)
{
    if (field.m_name.len > 0)
        return full_name(field);
    return (field.m_parent ? name_of(*field.m_parent) : "") + '#' + std::to_string(place_of(field));
}

// Fields at the top don't know their place.
int32_t CPDFNumberedNames::place_of(const CPDFField& field)
{
    if (field.m_parent)
        return field.m_index;
    for (int32_t i = 0; i < m_form.m_field_cnt; ++i) {
        const int32_t place = (m_last + i) % m_form.m_field_cnt;
        if (m_form.m_fields[place] == &field)
            return m_last = place;
    }
    return field.m_index;
}

std::string utf8_of(const PDF_String& text)
{
    const auto is_ascii = [](unsigned char c) { return c >= 0x20 && c < 0x7F; };
    if (text.len > 0 && std::all_of(text.buf, text.buf + text.len, is_ascii))
        return {reinterpret_cast<const char*>(text.buf), static_cast<size_t>(text.len)};
    const auto room = static_cast<size_t>(std::max(text.len, 0)) + 1;
    return read_wide(room, [&](wchar_t* buf, int size) { return cvt_text_to_ucs(&text, buf, size - 1); });
}

size_t find_malformed(std::string_view text)
{
    constexpr uint32_t REPLACEMENT = 0xFFFD;
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = bytes + text.size();
    for (const unsigned char* p = bytes; p < end;) {
        const unsigned char* start = p;
        if (*p < 0x80)
            ++p;
        else if (ucs_from_utf8(p, end) == REPLACEMENT && p - start == 1)
            return static_cast<size_t>(start - bytes);
    }
    return std::string_view::npos;
}

std::string utf8_of_name(const std::string& name)
{
    if (find_malformed(name) == std::string_view::npos)
        return name;
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(name.data()));
    return utf8_of({static_cast<int32_t>(name.size()), bytes});
}

PDF_String pdf_string_of(const std::string& text)
{
    constexpr uint32_t LANGUAGE_ESCAPE = 0x1B;
    constexpr uint32_t REPLACEMENT = 0xFFFD;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = p + text.size();
    std::string narrow;
    std::string wide = "\xFE\xFF";
    const auto append_unit = [&wide](uint32_t unit) {
        wide += static_cast<char>(unit >> 8);
        wide += static_cast<char>(unit);
    };
    bool plain = true;
    while (p < end) {
        uint32_t c = ucs_from_utf8(p, end);
        c = c == LANGUAGE_ESCAPE ? REPLACEMENT : c;
        plain = plain && is_plain(c);
        narrow += static_cast<char>(c);
        if (c > 0xFFFF)
            append_unit(0xD7C0 + (c >> 10));
        append_unit(c > 0xFFFF ? 0xDC00 | (c & 0x3FF) : c);
    }
    // Letters that look like a byte order mark would be taken for one.
    const bool marked = narrow.rfind("\xFE\xFF", 0) == 0 || narrow.rfind("\xEF\xBB\xBF", 0) == 0;
    const std::string& bytes = plain && !marked ? narrow : wide;
    PDF_String out = {0, nullptr};
    out.assign(bytes.data(), static_cast<int32_t>(bytes.size()));
    return out;
}

std::string in_quotes(std::string_view text)
{
    constexpr size_t MOST = 120;
    constexpr size_t END = 40;
    std::string quoted(text);
    if (text.size() > MOST) {
        const size_t begin = whole_characters(text, MOST - END);
        const size_t end = whole_characters(text, text.size() - END);
        quoted.replace(begin, end - begin, "...");
    }
    return "\"" + quoted + "\"";
}

CPDFStatus no_such_field(std::string_view name)
{
    return CPDFStatus::failed(PDF_CODE::NO_FIELD, "there is no field " + in_quotes(name));
}
