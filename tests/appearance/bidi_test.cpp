#include "appearance/text/bidi.h"

#include <gtest/gtest.h>

#include <string>

TEST(BidiTest, Levels)
{
    const struct {
        const char* label;
        std::u32string text;
        std::string levels;
        bool right_to_left;
    } cases[] = {
        {"empty", U"", "", false},
        {"one direction", U"ab 1", "0000", false},
        {"Hebrew in a Latin line", U"ab שלום, 12 cd", "00011111122000", false},
        {"Latin and digits in a Hebrew line", U"שלום ab 12 (ג)", "11111222221111", true},
        {"digits decide nothing", U"12 ש", "2211", true},
        {"isolate", U"a \u2067ש 1\u2069 b", "000112000", false},
        {"no character at all", std::u32string(1, char32_t{0x110000}), "0", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        bool right_to_left = !c.right_to_left;
        std::string levels;
        for (const uint8_t level : bidi_levels(c.text, right_to_left))
            levels += static_cast<char>('0' + level);
        EXPECT_EQ(levels, c.levels);
        EXPECT_EQ(right_to_left, c.right_to_left);
    }
}

TEST(BidiTest, DeepNestingAndLongTexts)
{
    std::u32string text;
    for (int i = 0; i < 50000; ++i)
        text += U"\u202b(א\u2067[b";
    bool right_to_left = false;
    EXPECT_EQ(bidi_levels(text, right_to_left).size(), text.size());
}

TEST(BidiTest, Mirrored)
{
    EXPECT_EQ(bidi_mirrored(U'('), U')');
    EXPECT_EQ(bidi_mirrored(U'a'), U'a');
}
