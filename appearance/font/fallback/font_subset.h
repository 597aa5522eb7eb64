// The part of a font file that a document needs.
#pragma once

#include <string>
#include <string_view>

#include "appearance/font/fallback/font_file.h"
#include "appearance/font/fallback/glyph_codes.h"

struct FONT_SUBSET {
    std::string program;     // the TrueType or the bare CFF font
    std::string cid_glyphs;  // for TrueType: the glyph in `program` of each code, two bytes each
};

// The font with these characters alone: a whole TrueType font, whose "cmap" leads to them, or a bare CFF one, whose glyphs
// keep their names. False when HarfBuzz can't make it.
bool make_character_subset(std::string& program, const CPDFFontFile& file, std::u32string_view characters);

// The outlines of the used codes, without what shapes or hints them. False when HarfBuzz can't make it.
bool make_subset(FONT_SUBSET& out, const CPDFFontFile& file, const CPDFGlyphCodes& codes);
