#include "appearance/text/characters.h"

#include <algorithm>
#include <iterator>

namespace {

struct CHARACTER_RANGE {
    char32_t first;
    char32_t last;
};

template <size_t N>
bool is_in(const CHARACTER_RANGE (&ranges)[N], char32_t c)
{
    const auto* range = std::partition_point(std::begin(ranges), std::end(ranges),
                                             [c](const CHARACTER_RANGE& r) { return r.last < c; });
    return range != std::end(ranges) && range->first <= c;
}

// Combining marks of the scripts in use; those of a font's own shaping follow their letters anyway.
constexpr CHARACTER_RANGE JOINING[] = {
    {0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},     {0x5BF, 0x5BF},     {0x5C1, 0x5C2},     {0x5C4, 0x5C5},
    {0x5C7, 0x5C7},   {0x610, 0x61A},   {0x64B, 0x65F},     {0x670, 0x670},     {0x6D6, 0x6DC},     {0x6DF, 0x6E4},
    {0x6E7, 0x6E8},   {0x6EA, 0x6ED},   {0x711, 0x711},     {0x730, 0x74A},     {0x7A6, 0x7B0},     {0x7EB, 0x7F3},
    {0x816, 0x82D},   {0x859, 0x85B},   {0x898, 0x89F},     {0x8CA, 0x903},     {0x93A, 0x93C},     {0x93E, 0x94F},
    {0x951, 0x957},   {0x962, 0x963},   {0x981, 0x983},     {0x9BC, 0x9BC},     {0x9BE, 0x9CD},     {0x9D7, 0x9D7},
    {0x9E2, 0x9E3},   {0xA01, 0xA03},   {0xA3C, 0xA51},     {0xA70, 0xA71},     {0xA81, 0xA83},     {0xABC, 0xABC},
    {0xABE, 0xACD},   {0xAE2, 0xAE3},   {0xB01, 0xB03},     {0xB3C, 0xB3C},     {0xB3E, 0xB57},     {0xB82, 0xB82},
    {0xBBE, 0xBCD},   {0xBD7, 0xBD7},   {0xC00, 0xC04},     {0xC3E, 0xC56},     {0xC81, 0xC83},     {0xCBC, 0xCBC},
    {0xCBE, 0xCD6},   {0xD00, 0xD03},   {0xD3B, 0xD3C},     {0xD3E, 0xD4D},     {0xD57, 0xD57},     {0xDCA, 0xDDF},
    {0xE31, 0xE31},   {0xE34, 0xE3A},   {0xE47, 0xE4E},     {0xEB1, 0xEB1},     {0xEB4, 0xEBC},     {0xEC8, 0xECE},
    {0xF18, 0xF19},   {0xF35, 0xF35},   {0xF37, 0xF37},     {0xF39, 0xF39},     {0xF71, 0xF84},     {0xF8D, 0xFBC},
    {0x102B, 0x103E}, {0x135D, 0x135F}, {0x17B4, 0x17D3},   {0x180B, 0x180D},   {0x1A55, 0x1A7F},   {0x1AB0, 0x1ACE},
    {0x1DC0, 0x1DFF}, {0x200C, 0x200D}, {0x20D0, 0x20F0},   {0x302A, 0x302F},   {0x3099, 0x309A},   {0xFE00, 0xFE0F},
    {0xFE20, 0xFE2F}, {0xFF9E, 0xFF9F}, {0x1F3FB, 0x1F3FF}, {0xE0020, 0xE007F}, {0xE0100, 0xE01EF},
};

constexpr CHARACTER_RANGE RIGHT_TO_LEFT[] = {
    {0x590, 0x8FF},   {0x200F, 0x200F}, {0x202A, 0x202E},   {0x2066, 0x2069},
    {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFE}, {0x10800, 0x10FFF}, {0x1E800, 0x1EFFF},
};

// Scripts that are set without spaces and break between any two characters. Thai and its neighbours, which need a
// dictionary, are not among them: their long words break between clusters.
constexpr CHARACTER_RANGE IDEOGRAPHIC[] = {
    {0x2E80, 0x2FFF}, {0x3001, 0x303F}, {0x3041, 0x4DBF}, {0x4E00, 0xA4CF},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF}, {0xFE30, 0xFE4F}, {0xFF00, 0xFF60}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD},
};

constexpr std::u32string_view OPENING =
    U"([{\u00AB\u2018\u201C\u3008\u300A\u300C\u300E\u3010\u3014\u3016\u3018\uFF08\uFF3B\uFF5B";

// Closing punctuation, and the small kana and marks of length and repetition that no line begins with.
constexpr std::u32string_view CLOSING =
    U")]}!?,.:;%\u00BB\u2019\u201D\u2026\u3001\u3002\u3005\u3009\u300B\u300D\u300F\u3011\u3015\u3017\u3019\u301C\u3041\u3043"
    U"\u3045\u3047\u3049\u3063\u3083\u3085\u3087\u308E\u309B\u309C\u309D\u309E\u30A1\u30A3\u30A5\u30A7\u30A9\u30C3\u30E3"
    U"\u30E5\u30E7\u30EE\u30F5\u30F6\u30FB\u30FC\u30FD\u30FE\uFF01\uFF05\uFF09\uFF0C\uFF0E\uFF1A\uFF1B\uFF1F\uFF3D\uFF5D";

bool is_one_of(std::u32string_view set, char32_t c)
{
    return set.find(c) != std::u32string_view::npos;
}

bool is_digit(char32_t c)
{
    return c >= '0' && c <= '9';
}

bool is_hyphen(char32_t c)
{
    return c == '-' || c == 0xAD || c == 0x2010 || c == 0x2013 || c == 0x2014;
}

}  // namespace

bool is_line_end(char32_t c)
{
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool is_break_space(char32_t c)
{
    if (c < 0x1680)
        return c == ' ' || c == '\t';
    return c == 0x1680 || (c >= 0x2000 && c <= 0x200B && c != 0x2007) || c == 0x205F || c == 0x3000;
}

bool is_never_drawn(char32_t c)
{
    if (c < 0x200B)
        return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x61C;
    return c == 0x200B || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) ||
           c == 0xFEFF || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
}

bool is_shaping_hint(char32_t c)
{
    return c == 0x200C || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0x180B && c <= 0x180D) ||
           (c >= 0xE0020 && c <= 0xE007F) || (c >= 0xE0100 && c <= 0xE01EF);
}

bool joins_previous(char32_t c)
{
    return c >= JOINING[0].first && is_in(JOINING, c);
}

bool is_right_to_left(char32_t c)
{
    return c >= RIGHT_TO_LEFT[0].first && is_in(RIGHT_TO_LEFT, c);
}

bool may_begin_line(std::u32string_view text, size_t at)
{
    const char32_t c = text[at];
    const char32_t before = text[at - 1];
    if (is_break_space(c))
        return false;
    if (is_break_space(before))
        return true;
    if (is_hyphen(before))  // a sign, or between digits, it holds them together
        return !is_digit(c) && at >= 2 && !is_break_space(text[at - 2]) && !is_hyphen(c);
    if (c < IDEOGRAPHIC[0].first && before < IDEOGRAPHIC[0].first)
        return false;
    return (is_in(IDEOGRAPHIC, c) || is_in(IDEOGRAPHIC, before)) && !is_one_of(CLOSING, c) &&
           !is_one_of(OPENING, before) && c != 0xA0 && before != 0xA0 && before != 0x2060;
}
