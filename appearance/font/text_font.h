// A font as text is set with it: which characters it shows, with which codes and how wide (ISO 32000-2, 9.2 to 9.7).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One glyph of a shaped text. Lengths are parts of the font size: 1.0 is as much as the font is high.
struct TEXT_GLYPH {
    uint32_t code = 0;     // the character code that shows it in a string of this font
    uint32_t cluster = 0;  // index in the text of the first character that it stands for
    float advance = 0;     // to the right
    float x_offset = 0;    // where it is drawn, off the line's pen position
    float y_offset = 0;
    float kern = 0;  // by how much the advance is more than the width that the font dictionary gives for the code
};

// What is above and below the baseline, as parts of the font size.
struct TEXT_FONT_BOX {
    float ascent = 0;   // above
    float descent = 0;  // below, as a positive number
};

// One font. Its lengths do not depend on a size. Whoever made it owns it.
class CPDFTextFont {
public:
    CPDFTextFont() = default;
    virtual ~CPDFTextFont() = default;
    CPDFTextFont(const CPDFTextFont&) = delete;
    CPDFTextFont& operator=(const CPDFTextFont&) = delete;

    // The box that lines of this font are placed by: line height is ascent + descent.
    virtual TEXT_FONT_BOX box() const = 0;

    // Whether the font shows the character.
    virtual bool has(char32_t c) const = 0;

    // Appends the glyphs of text[begin, end), which has one direction, from left to right as they stand on the line; what
    // the font does not show comes as its glyph for missing characters. The whole text is given for context.
    virtual void shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
                       std::vector<TEXT_GLYPH>& glyphs) = 0;

    // Appends the bytes of one character code to a string operand, and notes that the glyph is used.
    virtual void append_code(uint32_t code, std::string& bytes) = 0;
};

// The fonts that one text is set with: its own, and others for the characters that this one lacks.
class CPDFFontChoice {
public:
    CPDFFontChoice() = default;
    virtual ~CPDFFontChoice() = default;
    CPDFFontChoice(const CPDFFontChoice&) = delete;
    CPDFFontChoice& operator=(const CPDFFontChoice&) = delete;

    // The font that the field names. Borrowed.
    virtual CPDFTextFont& own() = 0;

    // The font for a character: the own one wherever it has it, then others; null when no font has it, and the own one
    // then shows what it shows for missing characters. Borrowed.
    virtual CPDFTextFont* font_for(char32_t c) = 0;

    // The name, without slash, under which the content stream of an appearance selects `font`.
    virtual std::string resource_name(const CPDFTextFont& font) = 0;
};
