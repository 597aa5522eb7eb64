// Characters of script texts, which are UTF-8, by what they are in ASCII: never by the language of the machine.
#pragma once

#include <string>
#include <string_view>

constexpr bool is_digit(char32_t c)
{
    return c >= '0' && c <= '9';
}

constexpr bool is_letter(char32_t c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool is_blank(char32_t c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char32_t upper_of(char32_t c)
{
    return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
}

constexpr char32_t lower_of(char32_t c)
{
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

// `text` without the blanks around it.
std::string_view trimmed(std::string_view text);

// `text` with small letters.
std::string lowered(std::string_view text);

// Between UTF-8 and characters; what is not well-formed becomes U+FFFD.
std::u32string characters_of(std::string_view text);
std::string text_of(std::u32string_view characters);
void append_character(std::string& out, char32_t c);
