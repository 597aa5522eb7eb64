#include "script/functions/characters.h"

#include "core/text.h"

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && is_blank(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    return text;
}

std::string lowered(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(lower_of(static_cast<unsigned char>(c)));
    return out;
}

std::u32string characters_of(std::string_view text)
{
    std::u32string out;
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = p + text.size();
    while (p < end)
        out += static_cast<char32_t>(ucs_from_utf8(p, end));
    return out;
}

std::string text_of(std::u32string_view characters)
{
    std::string out;
    for (const char32_t c : characters)
        append_character(out, c);
    return out;
}

void append_character(std::string& out, char32_t c)
{
    char bytes[4];
    out.append(bytes, static_cast<size_t>(utf8_from_ucs(c, bytes)));
}
