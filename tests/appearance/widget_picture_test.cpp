#include "appearance/draw/widget_picture.h"

#include <gtest/gtest.h>

#include <limits>

#include "appearance/draw/content_writer.h"
#include "appearance/draw/placement.h"
#include "tests/appearance/even_font.h"

namespace {

constexpr double HUGE_NUMBER = 1e300;
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();

class WidgetPictureTest : public testing::Test {
protected:
    WIDGET_LOOK look(WIDGET_KIND kind, std::u32string text)
    {
        WIDGET_LOOK look;
        look.kind = kind;
        look.width = 100;
        look.height = 20;
        look.fonts = &m_fonts;
        look.style.size = 10;
        look.text = std::move(text);
        return look;
    }

    // The content with operators separated by spaces.
    static std::string drawn(const WIDGET_LOOK& look, WIDGET_STATE state = WIDGET_STATE::ON)
    {
        std::string content = draw_widget(look, state).content;
        std::replace(content.begin(), content.end(), '\n', ' ');
        return content;
    }

    // What stands between BT and ET.
    static std::string text_of(const WIDGET_LOOK& look)
    {
        const std::string content = drawn(look);
        const size_t begin = content.find("BT ");
        return begin == std::string::npos ? content : content.substr(begin + 3, content.find("ET ") - begin - 4);
    }

    EvenChoice m_fonts;
};

}  // namespace

TEST_F(WidgetPictureTest, TextFields)
{
    WIDGET_LOOK thick = look(WIDGET_KIND::TEXT, U"abcd");
    thick.border = {3, BORDER_STYLE::SOLID, {}};
    thick.style.color = {3, {1, 0.5, 0}};
    WIDGET_LOOK raised = look(WIDGET_KIND::TEXT, U"a^b");
    raised.style.rise = 1;
    WIDGET_LOOK free = look(WIDGET_KIND::TEXT, U"abcd");
    free.style.size = 0;
    WIDGET_LOOK shaped = look(WIDGET_KIND::TEXT, U"aKb(");
    WIDGET_LOOK wide = look(WIDGET_KIND::TEXT, U"ab");
    wide.style.stretch = 2;
    wide.style.spacing = 1;
    wide.alignment = TEXT_ALIGNMENT::RIGHT;
    WIDGET_LOOK long_one = look(WIDGET_KIND::TEXT, U"abcdefghijklmnopqrstuvwxyz");
    long_one.alignment = TEXT_ALIGNMENT::CENTER;
    WIDGET_LOOK hebrew = look(WIDGET_KIND::TEXT, U"\u05D0\u05D0\u05D0\u05D0!");
    hebrew.width = 20;
    WIDGET_LOOK many = look(WIDGET_KIND::LINES, U"aa bb\ncc");
    many.height = 40;
    many.width = 20;
    many.alignment = TEXT_ALIGNMENT::RIGHT;
    WIDGET_LOOK low = look(WIDGET_KIND::LINES, U"aa\nbb\ncc");
    low.height = 12.5;
    WIDGET_LOOK beveled = look(WIDGET_KIND::TEXT, U"a");
    beveled.border.style = BORDER_STYLE::BEVELED;
    const struct {
        const char* label;
        const WIDGET_LOOK& look;
        const char* text;
    } cases[] = {
        {"padding is twice the border", thick, "1 .5 0 rg /Own 10 Tf 6 7.5 Td (abcd) Tj"},
        {"beveled borders count twice", beveled, "/Own 10 Tf 4 7.5 Td (a) Tj"},
        {"rise of the style and of a glyph", raised, "1 Ts /Own 10 Tf 2 7.5 Td (a) Tj 3.5 Ts (^) Tj 1 Ts (b) Tj"},
        {"free size", free, "/Own 16.92 Tf 2 5.77 Td (abcd) Tj"},
        {"kerning and escapes", shaped, "/Own 10 Tf 2 7.5 Td [(aK) 100 (b\\() ] TJ"},
        {"spacing and stretch", wide, "1 Tc 200 Tz /Own 10 Tf 74 7.5 Td (ab) Tj"},
        {"too long: the beginning shows", long_one, "/Own 10 Tf 2 7.5 Td (abcdefghijklmnopqrstuvwxyz) Tj"},
        {"too long from right to left", hebrew, "/Own 10 Tf -7 7.5 Td (!) Tj /Heb 10 Tf (\xD0\xD0\xD0\xD0) Tj"},
        {"lines", many, "/Own 10 Tf 8 28 Td (aa) Tj 0 -10 Td (bb) Tj 0 -10 Td (cc) Tj"},
        {"lines in a low field", low, "/Own 10 Tf 2 3.5 Td (aa) Tj 0 -10 Td (bb) Tj"},
        {"password", look(WIDGET_KIND::PASSWORD, U"geheim"), "/Own 10 Tf 2 7.5 Td (******) Tj"},
        {"empty", look(WIDGET_KIND::TEXT, U"\u200E"), "/Tx BMC EMC "},
        {"combo box", look(WIDGET_KIND::COMBO_BOX, U"a\u4E00"), "/Own 10 Tf 2 7.5 Td (a) Tj /Han 10 Tf <00> Tj"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(text_of(c.look), c.text);
    }
    EXPECT_EQ(drawn(look(WIDGET_KIND::COMBO_BOX, U"a")),
              "/Tx BMC q 2 1 96 18 re W n BT /Own 10 Tf 2 7.5 Td (a) Tj ET Q EMC ");
}

TEST_F(WidgetPictureTest, Combs)
{
    WIDGET_LOOK comb = look(WIDGET_KIND::COMB, U"abc");
    comb.cells = 10;
    const struct {
        TEXT_ALIGNMENT alignment;
        const char* text;
    } cases[] = {
        {TEXT_ALIGNMENT::LEFT, "/Own 10 Tf 2.5 7.5 Td (a) Tj 10 0 Td (b) Tj 10 0 Td (c) Tj"},
        {TEXT_ALIGNMENT::CENTER, "/Own 10 Tf 32.5 7.5 Td (a) Tj 10 0 Td (b) Tj 10 0 Td (c) Tj"},
        {TEXT_ALIGNMENT::RIGHT, "/Own 10 Tf 72.5 7.5 Td (a) Tj 10 0 Td (b) Tj 10 0 Td (c) Tj"},
    };
    for (const auto& c : cases) {
        comb.alignment = c.alignment;
        EXPECT_EQ(text_of(comb), c.text);
    }
    comb.alignment = TEXT_ALIGNMENT::LEFT;
    comb.text = U"\u05D0\u05D11";
    EXPECT_EQ(text_of(comb), "/Own 10 Tf 2.5 7.5 Td (1) Tj /Heb 10 Tf 10 0 Td (\xD1) Tj 10 0 Td (\xD0) Tj");
    comb.cells = 2;
    comb.text = U"abc";
    comb.border_color = {1, {0}};
    EXPECT_EQ(drawn(comb), "q 0 G .5 .5 99 19 re 50 .5 m 50 19.5 l S Q /Tx BMC q 1 1 98 18 re W n "
                           "BT /Own 10 Tf 22.5 7.5 Td (a) Tj 50 0 Td (b) Tj ET Q EMC ");
}

TEST_F(WidgetPictureTest, ListBox)
{
    WIDGET_LOOK list = look(WIDGET_KIND::LIST_BOX, U"");
    list.rows = {U"one", U"two", U"three", U"four"};
    list.selected = {2, 0, 99};
    list.top_row = 1;
    list.style.size = 0;
    EXPECT_EQ(drawn(list),
              "/Tx BMC q 1 1 98 18 re W n .6 .757 .855 rg 1 -5 98 12 re f BT 0 g /Own 12 Tf 2 10 Td (two) Tj "
              "0 g 0 -12 Td (three) Tj ET Q EMC ");
}

TEST_F(WidgetPictureTest, Buttons)
{
    WIDGET_LOOK check = look(WIDGET_KIND::CHECK_BOX, U"");
    check.width = 20;
    check.style.size = 0;
    check.background = {1, {1}};
    EXPECT_EQ(drawn(check, WIDGET_STATE::OFF), "q 1 g 0 0 20 20 re f Q ");
    EXPECT_EQ(drawn(check), "q 1 g 0 0 20 20 re f Q q 1 1 18 18 re W n BT /Own 16 Tf 6 6 Td (4) Tj ET Q ");
    check.text = U"8";
    check.background = {};
    EXPECT_EQ(drawn(check), "q 1 1 18 18 re W n 2 18 m 18 2 l 2 2 m 18 18 l S Q ");
    WIDGET_LOOK radio = check;
    radio.kind = WIDGET_KIND::RADIO_BUTTON;
    radio.text = U"l";
    radio.border = {2, BORDER_STYLE::INSET, {}};
    EXPECT_NE(drawn(radio).find(" q 13 10 m 13 11.657 11.657 13 10 13 c "), std::string::npos) << drawn(radio);
    radio.fonts = nullptr;
    EXPECT_EQ(drawn(radio).find("BT"), std::string::npos);
    EXPECT_EQ(drawn(look(WIDGET_KIND::PUSH_BUTTON, U"Send")),
              "q 1 1 98 18 re W n BT /Own 10 Tf 40 7.5 Td (Send) Tj ET Q ");
}

TEST_F(WidgetPictureTest, Borders)
{
    WIDGET_LOOK box = look(WIDGET_KIND::TEXT, U"");
    box.border_color = {3, {0, 0, 1}};
    const struct {
        const char* label;
        WIDGET_BORDER border;
        const char* content;
    } cases[] = {
        {"solid", {2, BORDER_STYLE::SOLID, {}}, "q 0 0 1 RG 2 w 1 1 98 18 re S Q "},
        {"dashed", {1, BORDER_STYLE::DASHED, {3, 1.5}}, "q 0 0 1 RG [3 1.5 ] 0 d .5 .5 99 19 re S Q "},
        {"dashes of nothing", {1, BORDER_STYLE::DASHED, {0, 0}}, "q 0 0 1 RG .5 .5 99 19 re S Q "},
        {"underline", {2, BORDER_STYLE::UNDERLINE, {}}, "q 0 0 1 RG 2 w 0 1 m 100 1 l S Q "},
        {"none", {0, BORDER_STYLE::SOLID, {}}, "q Q "},
        {"inset",
         {1, BORDER_STYLE::INSET, {}},
         "q .5 g 1 1 m 1 19 l 99 19 l 98 18 l 2 18 l 2 2 l f .753 g 99 19 m 99 1 l 1 1 l 2 2 l 98 2 l 98 18 l f "
         "0 0 1 RG .5 .5 99 19 re S Q "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        box.border = c.border;
        EXPECT_EQ(drawn(box), std::string(c.content) + "/Tx BMC EMC ");
    }
}

TEST_F(WidgetPictureTest, Rotations)
{
    const struct {
        int rotation;
        double width;
        double matrix[6];
    } cases[] = {
        {90, 20, {0, 1, -1, 0, 100, 0}},
        {-90, 20, {0, -1, 1, 0, 0, 20}},
        {540, 100, {-1, 0, 0, -1, 100, 20}},
        {45, 100, {1, 0, 0, 1, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rotation);
        WIDGET_LOOK turned = look(WIDGET_KIND::TEXT, U"a");
        turned.rotation = c.rotation;
        const WIDGET_PICTURE picture = draw_widget(turned, WIDGET_STATE::ON);
        EXPECT_EQ(picture.width, c.width);
        const PDF_RECTANGLE rect = {50, 60, 150, 80};
        PDF_MATRIX matrix;
        std::copy_n(picture.matrix, 6, matrix.begin());
        EXPECT_TRUE(std::equal(c.matrix, c.matrix + 6, picture.matrix));
        EXPECT_EQ(place_appearance({0, 0, picture.width, picture.height}, matrix, rect),
                  (PDF_MATRIX{1, 0, 0, 1, 50, 60}));
    }
}

TEST(PlacementTest, StretchesAndRefuses)
{
    EXPECT_EQ(place_appearance({10, 10, 0, 0}, {0, 2, -2, 0, 5, 5}, {100, 100, 140, 110}),
              (PDF_MATRIX{2, 0, 0, 0.5, 130, 97.5}));
    EXPECT_FALSE(place_appearance({0, 0, 0, 10}, {1, 0, 0, 1, 0, 0}, {0, 0, 10, 10}));
    EXPECT_FALSE(place_appearance({0, 0, 10, NO_NUMBER}, {1, 0, 0, 1, 0, 0}, {0, 0, 10, 10}));
    EXPECT_FALSE(place_appearance({0, 0, 10, 10}, {1, 0, 0, 1, 0, 0}, {0, 0, INFINITE, 10}));
}

TEST_F(WidgetPictureTest, EveryNumberGivesAPicture)
{
    const double numbers[] = {0, -5, 1e-9, 1e9, HUGE_NUMBER, INFINITE, -INFINITE, NO_NUMBER};
    const WIDGET_KIND kinds[] = {WIDGET_KIND::TEXT,      WIDGET_KIND::LINES,      WIDGET_KIND::COMB,
                                 WIDGET_KIND::LIST_BOX,  WIDGET_KIND::CHECK_BOX,  WIDGET_KIND::RADIO_BUTTON,
                                 WIDGET_KIND::COMBO_BOX, WIDGET_KIND::PUSH_BUTTON};
    for (const WIDGET_KIND kind : kinds) {
        for (const double number : numbers) {
            WIDGET_LOOK odd = look(kind, U"a b\n\u05D0c");
            odd.rows = {U"a", U"b"};
            odd.cells = 2000000000;
            odd.background = {4, {number, number, 0, 0}};
            odd.border_color = {7, {}};
            odd.border = {number, BORDER_STYLE::DASHED, {number}};
            odd.style.size = number;
            m_fonts.m_own.m_advance = static_cast<float>(number);
            m_fonts.m_own.m_box = {static_cast<float>(number), 0};
            for (const double side : numbers) {
                odd.height = side;
                const WIDGET_PICTURE picture = draw_widget(odd, WIDGET_STATE::ON);
                EXPECT_GE(picture.height, 0);
                const auto count = [&](std::string_view part) {
                    size_t found = 0;
                    for (size_t at = 0; (at = picture.content.find(part, at)) != std::string::npos; ++at)
                        ++found;
                    return found;
                };
                EXPECT_EQ(count("q\n"), count("Q\n")) << picture.content;
                EXPECT_EQ(count("nan") + count("inf"), 0u) << picture.content;
            }
        }
    }
}

TEST(ContentWriterTest, Numbers)
{
    CPDFContentWriter out;
    out.op({0, -0.0001, 0.5, -0.5, 12.3456, 100, 1.05, 1e30, NO_NUMBER, -7.1}, "x");
    EXPECT_EQ(out.take(), "0 0 .5 -.5 12.346 100 1.05 1000000 0 -7.1 x\n");
}
