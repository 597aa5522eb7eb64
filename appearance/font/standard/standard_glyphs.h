// The glyphs of the standard 14 fonts (ISO 32000-2, 9.6.2.2 and Annex D): names, characters, codes and widths.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// The Latin encodings, in the order of LATIN_GLYPH::codes.
enum LATIN_ENCODING : uint8_t { LATIN_STANDARD, LATIN_MAC_ROMAN, LATIN_WIN_ANSI, LATIN_PDF_DOC, LATIN_ENCODINGS };

// The columns of LATIN_GLYPH::widths. The slanted Helveticas are as wide as the upright ones; all of Courier is 600.
enum LATIN_COLUMN : uint8_t {
    COLUMN_HELVETICA,
    COLUMN_HELVETICA_BOLD,
    COLUMN_TIMES,
    COLUMN_TIMES_BOLD,
    COLUMN_TIMES_ITALIC,
    COLUMN_TIMES_BOLD_ITALIC,
    LATIN_COLUMNS
};

// A glyph of the twelve Latin fonts. Widths are thousandths of the font size.
struct LATIN_GLYPH {
    char name[15];
    uint16_t character;              // Unicode
    uint8_t codes[LATIN_ENCODINGS];  // 0 where the encoding lacks it
    uint16_t widths[LATIN_COLUMNS];
};

// A glyph of Symbol or ZapfDingbats, with its code in the font's own encoding.
struct CODED_GLYPH {
    uint8_t code;
    char name[15];
    uint16_t character;  // Unicode; 0 for parts of large brackets and the like
    uint16_t width;
};

std::span<const LATIN_GLYPH> latin_glyphs();     // sorted by name
std::span<const CODED_GLYPH> symbol_glyphs();    // sorted by code
std::span<const CODED_GLYPH> dingbats_glyphs();  // sorted by code

// The Latin glyph of that name, or null.
const LATIN_GLYPH* find_latin_glyph(std::string_view name);

// The glyph of that name, or null.
const CODED_GLYPH* find_coded_glyph(std::span<const CODED_GLYPH> glyphs, std::string_view name);
