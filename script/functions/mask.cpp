#include "script/functions/mask.h"

#include <algorithm>
#include <vector>

#include "script/functions/characters.h"
#include "script/functions/print.h"

namespace {

bool fits_character(char32_t c, char32_t mask)
{
    switch (mask) {
    case '9':
        return is_digit(c);
    case 'A':
        return is_letter(c);
    case 'O':
        return is_digit(c) || is_letter(c);
    case 'X':
        return true;
    default:
        return c == mask;
    }
}

// In these ~ is what may stand between groups.
bool fits_groups(std::string_view text, std::string_view groups, MASK_PART part)
{
    size_t at = 0;
    for (const char mask : groups) {
        const bool more = at < text.size();
        if (mask == '~') {
            at += more && std::string_view(".- ").find(text[at]) != std::string_view::npos;
            continue;
        }
        if (!more)
            return part == MASK_PART::START;
        if (!fits_character(static_cast<unsigned char>(text[at++]), static_cast<unsigned char>(mask)))
            return false;
    }
    return at == text.size();
}

// Numbers of other countries, as dialled from the first one.
bool is_abroad(std::string_view text)
{
    return text.starts_with("011") && text.find_first_not_of("0123456789.- ") == std::string_view::npos;
}

std::vector<std::string_view> groups_of(SPECIAL_FORM form)
{
    switch (form) {
    case SPECIAL_FORM::ZIP:
        return {"99999"};
    case SPECIAL_FORM::ZIP_PLUS_4:
        return {"99999~9999"};
    case SPECIAL_FORM::PHONE:
        return {"999~9999", "999~999~9999", "(999)~999~9999"};
    default:
        return {"999~99~9999"};
    }
}

}  // namespace

bool fits_mask(std::string_view text, std::string_view mask, MASK_PART part)
{
    const std::u32string characters = characters_of(text);
    const std::u32string masks = characters_of(mask);
    for (size_t i = 0; i < masks.size(); ++i) {
        if (masks[i] == '*')
            return true;
        if (i == characters.size())
            return part == MASK_PART::START;
        if (!fits_character(characters[i], masks[i]))
            return false;
    }
    return characters.size() == masks.size();
}

bool fits_special(std::string_view text, SPECIAL_FORM form, MASK_PART part)
{
    const std::vector<std::string_view> all = groups_of(form);
    return (form == SPECIAL_FORM::PHONE && is_abroad(text)) ||
           std::any_of(all.begin(), all.end(),
                       [&](std::string_view groups) { return fits_groups(text, groups, part); });
}

std::string print_special(std::string_view text, SPECIAL_FORM form)
{
    switch (form) {
    case SPECIAL_FORM::ZIP:
        return print_by_mask("99999", text);
    case SPECIAL_FORM::ZIP_PLUS_4:
        return print_by_mask("99999-9999", text);
    case SPECIAL_FORM::PHONE: {
        const auto digits = std::count_if(text.begin(), text.end(), [](unsigned char c) { return is_digit(c); });
        return print_by_mask(digits >= 10 ? "(999) 999-9999" : "999-9999", text);
    }
    default:
        return print_by_mask("999-99-9999", text);
    }
}
