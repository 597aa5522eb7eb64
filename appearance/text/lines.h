// Lines of a shaped text: how wide they are, where they break, and how large the font may be.
#pragma once

#include <vector>

#include "appearance/text/default_appearance.h"
#include "appearance/text/shaped_text.h"

// Characters of one paragraph, without the spaces at the end of the line.
struct TEXT_LINE {
    size_t begin = 0;
    size_t end = 0;
    bool right_to_left = false;  // the direction of its paragraph
};

// What a line is as high as: the box of the text's own font, put right where a font says nonsense. Parts of the font size.
TEXT_FONT_BOX line_box(const CPDFTextFont& font);

// The distance of lines.
inline double line_height(const TEXT_FONT_BOX& box)
{
    return static_cast<double>(box.ascent) + box.descent;
}

// The width of characters in points, at `style.size`.
double width_of(const SHAPED_TEXT& shaped, size_t begin, size_t end, const TEXT_STYLE& style);

// Breaks the text into lines of at most `width` points at `style.size`; a word that is wider breaks between clusters, and
// every line has at least one cluster. Stops after `limit` lines. An empty paragraph is an empty line.
std::vector<TEXT_LINE> break_lines(const SHAPED_TEXT& shaped, double width, const TEXT_STYLE& style, size_t limit);

// Room for a text, in points: inside it the text has to stay when its size is free.
struct TEXT_ROOM {
    double width = 0;
    double height = 0;
};

// The size for text in one line: as high as the room allows, and not wider than it.
double fit_one_line(const SHAPED_TEXT& shaped, const TEXT_ROOM& room, const TEXT_FONT_BOX& box,
                    const TEXT_STYLE& style);

// The size for text that breaks into lines.
double fit_many_lines(const SHAPED_TEXT& shaped, const TEXT_ROOM& room, const TEXT_FONT_BOX& box,
                      const TEXT_STYLE& style);

// The least size that a text is made to fit with. Nobody reads smaller ones.
constexpr double TEXT_SIZE_MIN = 4;

// The size that many lines begin with.
constexpr double TEXT_SIZE_LINES = 12;
