// The character codes of an embedded font: what each shows, and which text it stands for when it is copied out.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

struct GLYPH_CODE {
    uint32_t glyph = 0;   // in the font file
    std::u32string text;  // empty for a glyph that adds nothing to the one before it
    int width = 0;        // thousandths of the font size
    bool used = false;
};

// Hands out two-byte codes. Where the font lets it, a glyph has one code for each text that it stands for, so that the
// parts of a letter that is drawn in another order than it is read still give the text back.
class CPDFGlyphCodes {
public:
    // The code that shows a glyph for a text; 0, which shows that a character is missing, once all are handed out.
    uint32_t code_of(const GLYPH_CODE& shown);

    // The same where the font decides on the code, so that the glyph stands for the text that comes first.
    uint32_t fixed_code(uint32_t code, const GLYPH_CODE& shown);

    // True when the code was not used before.
    bool use(uint32_t code);

    // By code. Never holds code 0.
    const std::map<uint32_t, GLYPH_CODE>& all() const { return m_codes; }

private:
    std::map<uint32_t, GLYPH_CODE> m_codes;
    std::unordered_map<std::u32string, uint32_t> m_known;  // glyph and width as one character, and the text
};

// The CMap that turns the used codes into their texts (ISO 32000-2, 9.10.3).
std::string write_to_unicode(const CPDFGlyphCodes& codes);
