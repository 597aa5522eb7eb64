// Fonts for layout tests: every character is half as wide as the font is high.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "appearance/font/text_font.h"

// Shows the characters [first, last]; codes are the characters' low bytes.
class EvenFont : public CPDFTextFont {
public:
    EvenFont(char32_t first, char32_t last) : m_first(first), m_last(last) {}

    TEXT_FONT_BOX box() const override { return m_box; }
    bool has(char32_t c) const override { return c >= m_first && c <= m_last; }
    void shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
               std::vector<TEXT_GLYPH>& glyphs) override
    {
        const size_t before = glyphs.size();
        for (size_t i = begin; i < end; ++i) {
            TEXT_GLYPH glyph;
            glyph.code = has(text[i]) ? text[i] & 0xFF : '?';
            glyph.cluster = static_cast<uint32_t>(i);
            glyph.advance = m_advance;
            glyph.kern = text[i] == 'K' ? -0.1f : 0;
            glyph.y_offset = text[i] == '^' ? 0.25f : 0;
            glyphs.push_back(glyph);
        }
        if (right_to_left)
            std::reverse(glyphs.begin() + static_cast<std::ptrdiff_t>(before), glyphs.end());
    }
    void append_code(uint32_t code, std::string& bytes) override { bytes += static_cast<char>(code); }

    TEXT_FONT_BOX m_box = {0.75f, 0.25f};
    float m_advance = 0.5f;

private:
    char32_t m_first;
    char32_t m_last;
};

// ASCII in the field's own font, Hebrew and CJK in another; nothing else.
class EvenChoice : public CPDFFontChoice {
public:
    CPDFTextFont& own() override { return m_own; }
    CPDFTextFont* font_for(char32_t c) override
    {
        return m_own.has(c) ? &m_own : m_hebrew.has(c) ? &m_hebrew : m_han.has(c) ? &m_han : nullptr;
    }
    std::string resource_name(const CPDFTextFont& font) override
    {
        return &font == &m_own ? "Own" : &font == &m_hebrew ? "Heb" : "Han";
    }

    EvenFont m_own{' ', '~'};
    EvenFont m_hebrew{0x5D0, 0x5EA};
    EvenFont m_han{0x3001, 0x9FFF};
};
