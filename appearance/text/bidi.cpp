#include "appearance/text/bidi.h"

#include <fribidi/fribidi.h>

#include <climits>

std::vector<uint8_t> bidi_levels(std::u32string_view text, bool& right_to_left)
{
    right_to_left = false;
    std::vector<uint8_t> result(text.size());
    if (text.empty() || text.size() > INT_MAX)
        return result;
    const std::vector<FriBidiChar> characters(text.begin(), text.end());
    const FriBidiStrIndex count = static_cast<FriBidiStrIndex>(characters.size());
    std::vector<FriBidiCharType> types(text.size());
    std::vector<FriBidiBracketType> brackets(text.size());
    std::vector<FriBidiLevel> levels(text.size());
    fribidi_get_bidi_types(characters.data(), count, types.data());
    fribidi_get_bracket_types(characters.data(), count, types.data(), brackets.data());
    FriBidiParType direction = FRIBIDI_PAR_ON;
    if (!fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &direction, levels.data()))
        return result;
    right_to_left = FRIBIDI_IS_RTL(direction);
    result.assign(levels.begin(), levels.end());
    return result;
}

char32_t bidi_mirrored(char32_t c)
{
    FriBidiChar mirrored = c;
    fribidi_get_mirror_char(c, &mirrored);
    return mirrored;
}
