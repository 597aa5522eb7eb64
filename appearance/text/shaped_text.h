// A text that is ready to be set in lines: its glyphs, and what lines need to know of its characters. Nothing here depends
// on a font size.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "appearance/font/text_font.h"

constexpr uint8_t TEXT_SPACE = 1;       // takes no room at the end of a line
constexpr uint8_t TEXT_JOINED = 2;      // stays with the character before it
constexpr uint8_t TEXT_LINE_START = 4;  // a line may begin here

struct TEXT_CHARACTER {
    float advance = 0;    // of the glyphs that begin with it, as a part of the font size
    uint16_t glyphs = 0;  // how many these are
    uint8_t flags = 0;
};

// Characters of one font and direction.
struct TEXT_RUN {
    CPDFTextFont* font = nullptr;  // borrowed from the font choice
    size_t begin = 0;              // characters
    size_t end = 0;
    size_t glyph_begin = 0;  // glyphs, from left to right
    size_t glyph_end = 0;
    uint8_t level = 0;  // odd: from right to left
};

struct TEXT_PARAGRAPH {
    size_t begin = 0;
    size_t end = 0;
    bool right_to_left = false;
};

struct SHAPED_TEXT {
    std::u32string text;                     // without what is never drawn; line ends stand between paragraphs
    std::vector<TEXT_CHARACTER> characters;  // one for each of `text`
    std::vector<TEXT_PARAGRAPH> paragraphs;  // at least one
    std::vector<TEXT_RUN> runs;              // in the order of the text; some characters are in none
    std::vector<TEXT_GLYPH> glyphs;
    std::u32string missing;  // what no font has, each once; at most TEXT_MISSING_MAX characters
};

constexpr size_t TEXT_MISSING_MAX = 16;

// A run's part of a line.
struct TEXT_SEGMENT {
    const TEXT_RUN* run = nullptr;  // borrowed from the shaped text
    size_t glyph_begin = 0;
    size_t glyph_end = 0;
};

enum class TEXT_LINES {
    ONE,   // line ends become spaces
    MANY,  // line ends begin paragraphs
};

// Shapes `value` with the fonts; no more of it than the limits of drawing allow.
SHAPED_TEXT shape_text(std::u32string_view value, TEXT_LINES lines, CPDFFontChoice& fonts);

// The glyphs of the characters [begin, end), which lie in one paragraph, as they stand on a line from left to right.
std::vector<TEXT_SEGMENT> segments_on_line(const SHAPED_TEXT& shaped, size_t begin, size_t end);
