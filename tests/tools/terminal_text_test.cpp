#include "tools/terminal_text.h"

#include <gtest/gtest.h>

namespace {
TEST(TerminalTextTest, WhatDrivesATerminalBecomesAnEscape)
{
    const std::pair<std::string, std::string> cases[] = {
        {"Zoë 漢字 😀 e\u0301", "Zoë 漢字 😀 e\u0301"},
        {std::string("a\0b\r\n\t", 6), "a\\x00b\\r\\n\\t"},
        {"\x1b[31m\x7f", "\\x1b[31m\\x7f"},
        {"\u009b2J", "\\u009b2J"},
        {"\u202egpj.exe\u202c \u2066x\u2069\u200f\u2028", "\\u202egpj.exe\\u202c \\u2066x\\u2069\\u200f\\u2028"},
        {"\xff\xc3", "\uFFFD\uFFFD"},
        {"क\u200dष", "क\u200dष"},  // a joiner is part of the text
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(printable(text), expected);
    EXPECT_EQ(printable_lines("a\r\n\tb\x1b"), "a\\r\n\tb\\x1b");
}

TEST(TerminalTextTest, CutTextNeverExceedsItsColumns)
{
    const struct {
        const char* text;
        int columns;
        const char *end_cut, *start_cut;
    } cases[] = {
        {"abcdef", 6, "abcdef", "abcdef"},
        {"abcdef", 5, "abcd…", "…cdef"},
        {"漢字漢字", 6, "漢字…", "…漢字"},  // half a character is never shown
        {"e\u0301e\u0301e\u0301", 2, "e\u0301…", "…e\u0301"},
        {"abc", 1, "…", "…"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(cut_end(c.text, c.columns), c.end_cut);
        EXPECT_EQ(cut_start(c.text, c.columns), c.start_cut);
    }
}
}  // namespace
