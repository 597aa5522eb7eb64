#include "appearance/font/mapped_font.h"

#include <algorithm>
#include <iterator>

namespace {

struct CHARACTER_RANGE {
    char32_t first;
    char32_t last;
};

// Scripts whose letters change shape, order or place beside one another, and combining marks.
constexpr CHARACTER_RANGE SHAPED[] = {{0x0300, 0x036F}, {0x0591, 0x05C7},   {0x0600, 0x109F},  {0x1780, 0x18AF},
                                      {0x1900, 0x1CFF}, {0x1DC0, 0x1DFF},   {0x20D0, 0x20FF},  {0xA800, 0xABFF},
                                      {0xFE00, 0xFE2F}, {0x10A00, 0x10FFF}, {0x11000, 0x11FFF}};

bool needs_shaping(char32_t c)
{
    if (c < SHAPED[0].first)
        return false;
    const auto* range =
        std::find_if(std::begin(SHAPED), std::end(SHAPED), [c](const CHARACTER_RANGE& r) { return c <= r.last; });
    return range != std::end(SHAPED) && c >= range->first;
}

struct CHARACTER_PAIR {
    char32_t from;
    char32_t to;
};

// Characters that look like another one, which more fonts have.
constexpr CHARACTER_PAIR SAME_LOOK[] = {{0x00A0, ' '},    {0x2007, ' '},    {0x202F, ' '},    {0x00AD, '-'},
                                        {0x2010, '-'},    {0x2011, '-'},    {0x03BC, 0x00B5}, {0x00B5, 0x03BC},
                                        {0x2126, 0x03A9}, {0x03A9, 0x2126}, {0x2206, 0x0394}, {0x0394, 0x2206}};

// What is written from right to left shows these turned round.
constexpr CHARACTER_PAIR MIRRORED[] = {{'(', ')'},       {')', '('},       {'[', ']'},       {']', '['},
                                       {'{', '}'},       {'}', '{'},       {'<', '>'},       {'>', '<'},
                                       {0x00AB, 0x00BB}, {0x00BB, 0x00AB}, {0x2039, 0x203A}, {0x203A, 0x2039}};

// What `c` is paired with, or `c` itself.
template <size_t Size>
char32_t paired(const CHARACTER_PAIR (&pairs)[Size], char32_t c)
{
    const auto* pair = std::find_if(pairs, pairs + Size, [c](const CHARACTER_PAIR& p) { return p.from == c; });
    return pair != pairs + Size ? pair->to : c;
}

}  // namespace

const SHOWN_CHARACTER* CPDFMappedFont::find_any_form(char32_t c) const
{
    if (needs_shaping(c))
        return nullptr;
    if (const SHOWN_CHARACTER* shown = find(c))
        return shown;
    const char32_t other = paired(SAME_LOOK, c);
    return other != c ? find(other) : nullptr;
}

bool CPDFMappedFont::has(char32_t c) const
{
    return find_any_form(c) != nullptr;
}

void CPDFMappedFont::shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
                           std::vector<TEXT_GLYPH>& glyphs)
{
    end = std::min(end, text.size());
    for (size_t i = begin; i < end; ++i) {
        const size_t at = right_to_left ? end - 1 - (i - begin) : i;
        const char32_t c = right_to_left ? paired(MIRRORED, text[at]) : text[at];
        const SHOWN_CHARACTER* found = find_any_form(c);
        const SHOWN_CHARACTER& shown = found ? *found : m_missing;
        glyphs.push_back({.code = shown.code, .cluster = static_cast<uint32_t>(at), .advance = shown.advance});
    }
}
