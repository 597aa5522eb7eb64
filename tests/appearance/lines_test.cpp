#include "appearance/text/lines.h"

#include <gtest/gtest.h>

#include "appearance/text/default_appearance.h"
#include "core/limits.h"
#include "tests/appearance/even_font.h"

namespace {

TEXT_STYLE sized(double size)
{
    TEXT_STYLE style;
    style.size = size;
    return style;
}

// The lines of `text` at 10 points, 5 points to a character, each in brackets; other characters than ASCII by code & 0xFF.
std::string broken(std::u32string_view text, double width)
{
    EvenChoice fonts;
    const SHAPED_TEXT shaped = shape_text(text, TEXT_LINES::MANY, fonts);
    std::string out;
    for (const TEXT_LINE& line : break_lines(shaped, width, sized(10), 100)) {
        out += '[';
        for (size_t i = line.begin; i < line.end; ++i)
            out += static_cast<char>(shaped.text[i] < 0x80 ? shaped.text[i] : '#');
        out += ']';
    }
    return out;
}

}  // namespace

TEST(LinesTest, Break)
{
    const struct {
        const char* label;
        std::u32string_view text;
        double width;
        const char* lines;
    } cases[] = {
        {"nothing", U"", 50, "[]"},
        {"every kind of line end", U"a\rb\nc\r\nd\u2028e\u2029f", 50, "[a][b][c][d][e][f]"},
        {"line ends side by side", U"a\n\rb\r", 50, "[a][][b][]"},
        {"exact fit, space beyond it", U"abc def", 15, "[abc][def]"},
        {"several spaces", U"ab   cd", 10, "[ab][cd]"},
        {"leading space stays", U" ab cd", 15, "[ ab][cd]"},
        {"word too long", U"a abcdefg", 15, "[a][abc][def][g]"},
        {"no room at all", U"ab c", -5, "[a][b][c]"},
        {"hyphen", U"well-known", 30, "[well-][known]"},
        {"minus sign and number range", U"xy -5 10-20", 20, "[xy][-5][10-2][0]"},
        {"no-break space", U"ab c\u00A0d", 25, "[ab][c#d]"},
        {"between ideographs", U"\u4E00\u4E8C\u4E09\u56DB", 10, "[##][##]"},
        {"not before closing punctuation", U"\u4E00\u4E8C\u3002\u4E09", 10, "[#][##][#]"},
        {"not after opening punctuation", U"\u4E00\u300C\u4E8C", 10, "[#][##]"},
        {"mark stays with its letter", U"abe\u0301", 10, "[ab][e#]"},
        {"tab and control characters", U"a\tb\u0001c\u200E", 50, "[a bc#]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(broken(c.text, c.width), c.lines);
    }
}

TEST(LinesTest, RunsByFontAndDirection)
{
    EvenChoice fonts;
    const SHAPED_TEXT shaped = shape_text(U"a \u05D0 \u05D1(b) \U0001F600\U0001F600", TEXT_LINES::ONE, fonts);
    EXPECT_EQ(shaped.missing, U"\U0001F600");
    std::string order;
    for (const TEXT_SEGMENT& segment : segments_on_line(shaped, 0, shaped.text.size())) {
        for (size_t i = segment.glyph_begin; i < segment.glyph_end; ++i)
            order += static_cast<char>(shaped.glyphs[i].code);
        order += fonts.resource_name(*segment.run->font)[0];
    }
    EXPECT_EQ(order, "a O\xD1H O\xD0H(b) ??O");
}

TEST(LinesTest, MirrorsBracketsOfItsOwnFont)
{
    EvenChoice fonts;
    const SHAPED_TEXT shaped = shape_text(U"\u05D0(\u05D1)", TEXT_LINES::ONE, fonts);
    ASSERT_EQ(shaped.glyphs.size(), 4u);
    EXPECT_TRUE(shaped.paragraphs[0].right_to_left);
    std::string line;
    for (const TEXT_SEGMENT& segment : segments_on_line(shaped, 0, 4)) {
        for (size_t i = segment.glyph_begin; i < segment.glyph_end; ++i)
            line += static_cast<char>(shaped.glyphs[i].code);
    }
    EXPECT_EQ(line, "(\xD1)\xD0");
}

TEST(LinesTest, FreeSizes)
{
    EvenChoice fonts;
    const TEXT_FONT_BOX box = line_box(fonts.own());
    const SHAPED_TEXT word = shape_text(U"abcd", TEXT_LINES::ONE, fonts);
    EXPECT_DOUBLE_EQ(fit_one_line(word, {100, 20}, box, {}), 18.8);
    EXPECT_DOUBLE_EQ(fit_one_line(word, {20, 20}, box, {}), 10);
    EXPECT_DOUBLE_EQ(fit_one_line(word, {2, 20}, box, {}), 4);
    EXPECT_DOUBLE_EQ(fit_one_line(word, {2, 2}, box, {}), 1.88);
    const SHAPED_TEXT lines = shape_text(U"abcd abcd abcd abcd", TEXT_LINES::MANY, fonts);
    EXPECT_DOUBLE_EQ(fit_many_lines(lines, {200, 50}, box, {}), 12);
    EXPECT_DOUBLE_EQ(fit_many_lines(lines, {40, 16}, box, {}), 7.0625);  // two lines and the descent of one more
    EXPECT_DOUBLE_EQ(fit_many_lines(lines, {1, 1}, box, {}), 4);
}

TEST(LinesTest, MegabytesAreCut)
{
    EvenChoice fonts;
    const std::u32string text(4 << 20, U'x');
    EXPECT_EQ(shape_text(text, TEXT_LINES::ONE, fonts).glyphs.size(), LIMIT_DRAWN_LINE);
    const SHAPED_TEXT shaped = shape_text(text, TEXT_LINES::MANY, fonts);
    fit_many_lines(shaped, {100, 100}, line_box(fonts.own()), {});
    EXPECT_EQ(break_lines(shaped, 1, sized(10), SIZE_MAX).size(), LIMIT_DRAWN_TEXT);
}

TEST(DefaultAppearanceTest, Reads)
{
    const struct {
        const char* bytes;
        const char* font;
        double size;
        int colors;
        double last_color;
    } cases[] = {
        {"/Helv 12 Tf 0 g", "Helv", 12, 1, 0},
        {"0.1 0.2 .3 rg/A#20b 0 Tf", "A b", 0, 3, 0.3},
        {"/F1 9 Tf /F2 +8.5 Tf 0 0 0 .5 k", "F2", 8.5, 4, 0.5},
        {"/DeviceRGB cs 1 0 1 sc /F -3 Tf", "F", 0, 3, 1},
        {"[(x\\) Tf) <41>] << /F 7 >> Tf % 1 g\n/G", "F", 7, 0, 0},
        {"/F 1e99 Tf", "", 0, 0, 0},
        {"/F 999999999999999999999 Tf 7 g", "F", 5000, 1, 1},
        {"Tf rg g 12 Tf /", "", 12, 0, 0},
        {"/F nan Tf (((", "", 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes);
        const TEXT_STYLE style = read_default_appearance(c.bytes);
        EXPECT_EQ(style.font, c.font);
        EXPECT_DOUBLE_EQ(style.size, c.size);
        EXPECT_EQ(style.color.count, c.colors);
        EXPECT_DOUBLE_EQ(style.color.values[std::max(c.colors - 1, 0)], c.last_color);
    }
    const TEXT_STYLE style = read_default_appearance("2 Ts 1.5 Tc 80 Tz 3 Tr");
    EXPECT_EQ(style.rise, 2);
    EXPECT_EQ(style.spacing, 1.5);
    EXPECT_EQ(style.stretch, 0.8);
}
