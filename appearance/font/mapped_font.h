// A font that shows each character with one code and no glyph in another place: what the fonts of a form have in common.
#pragma once

#include "appearance/font/text_font.h"

// How one character is shown.
struct SHOWN_CHARACTER {
    uint32_t code = 0;
    float advance = 0;  // part of the font size
};

class CPDFMappedFont : public CPDFTextFont {
public:
    TEXT_FONT_BOX box() const override { return m_box; }

    // Characters that several codes must join or place to show (Arabic letters, Indic ones, combining marks) are none
    // that such a font has.
    bool has(char32_t c) const override;

    void shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
               std::vector<TEXT_GLYPH>& glyphs) override;

protected:
    // How the font shows `c`, or null. Borrowed until the next call.
    virtual const SHOWN_CHARACTER* find(char32_t c) const = 0;

    TEXT_FONT_BOX m_box;
    SHOWN_CHARACTER m_missing;  // shows that a character is missing

private:
    const SHOWN_CHARACTER* find_any_form(char32_t c) const;
};
