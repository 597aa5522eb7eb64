#include "appearance/font/standard/glyph_encoding.h"

void name_latin_glyphs(LATIN_ENCODING encoding, GLYPH_NAMES& names)
{
    name_common_glyphs(encoding, encoding, names);
    if (encoding == LATIN_WIN_ANSI) {  // the two that stand twice
        names[0xA0] = "space";
        names[0xAD] = "hyphen";
    }
    if (encoding == LATIN_MAC_ROMAN)
        names[0xCA] = "space";
}

void name_common_glyphs(LATIN_ENCODING one, LATIN_ENCODING other, GLYPH_NAMES& names)
{
    for (const LATIN_GLYPH& glyph : latin_glyphs()) {
        if (glyph.codes[one] && glyph.codes[one] == glyph.codes[other])
            names[glyph.codes[one]] = glyph.name;
    }
}
