// A font of this machine that stands in for a document's own where that lacks characters.
#pragma once

#include "appearance/font/fallback/font_file.h"
#include "appearance/font/fallback/glyph_codes.h"

// One font file as one document uses it: codes are two bytes, given out as glyphs come up.
class CPDFFallbackFont : public CPDFTextFont {
public:
    // `file` is borrowed and outlives the font.
    explicit CPDFFallbackFont(const CPDFFontFile& file) : m_file(file), m_empty_glyph(file.glyph_of(U' ')) {}

    TEXT_FONT_BOX box() const override { return m_file.box(); }
    bool has(char32_t c) const override { return m_file.glyph_of(c) != 0; }
    void shape(std::u32string_view text, size_t begin, size_t end, bool right_to_left,
               std::vector<TEXT_GLYPH>& glyphs) override;
    void append_code(uint32_t code, std::string& bytes) override;

    const CPDFFontFile& file() const { return m_file; }
    const CPDFGlyphCodes& codes() const { return m_codes; }

    // Whether codes came into use since the last call of written().
    bool has_news() const { return m_has_news; }
    void written() { m_has_news = false; }

private:
    void shape_script(std::u32string_view text, size_t begin, size_t end, hb_script_t script, bool right_to_left,
                      std::vector<TEXT_GLYPH>& glyphs);
    void add_clusters(std::u32string_view text, size_t end, bool right_to_left, const std::vector<TEXT_GLYPH>& shaped,
                      std::vector<TEXT_GLYPH>& glyphs);
    void join_vowel_am(std::u32string_view text, std::vector<TEXT_GLYPH>& cluster) const;
    void add_cluster(std::u32string_view characters, bool right_to_left, const std::vector<TEXT_GLYPH>& cluster,
                     std::vector<TEXT_GLYPH>& glyphs);
    std::u32string taken_apart(std::u32string_view text, size_t count) const;
    void add_glyph(const TEXT_GLYPH& shaped, std::u32string_view text, bool right_to_left,
                   std::vector<TEXT_GLYPH>& glyphs);
    bool must_stand_apart(std::u32string_view text, bool right_to_left) const;
    TEXT_GLYPH coded(const TEXT_GLYPH& shaped, std::u32string_view text);

    const CPDFFontFile& m_file;  // borrowed from the machine's fonts
    uint32_t m_empty_glyph;      // 0 when the file has none
    CPDFGlyphCodes m_codes;
    bool m_has_news = false;
};
