// The glyph names that character codes stand for (ISO 32000-2, Annex D).
#pragma once

#include <array>
#include <string>

#include "appearance/font/standard/standard_glyphs.h"

// By character code; empty where a code shows nothing.
using GLYPH_NAMES = std::array<std::string, 256>;

// Sets the name of every code of the encoding; others stay.
void name_latin_glyphs(LATIN_ENCODING encoding, GLYPH_NAMES& names);

// The same for the codes that mean the same in two encodings, for fonts of which it is not sure how they are read.
void name_common_glyphs(LATIN_ENCODING one, LATIN_ENCODING other, GLYPH_NAMES& names);
