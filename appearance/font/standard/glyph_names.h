// What glyph names mean (ISO 32000-2, 9.6.5.1 and 14.8.2.6).
#pragma once

#include <string_view>

// The character that a glyph of this name shows: the names of the standard fonts, Greek, Cyrillic, Hebrew and symbols, "uniXXXX",
// "uXXXXX", the "aNN" of ZapfDingbats. 0 for any other name, and for a glyph that shows several characters.
char32_t character_of_glyph(std::string_view name);
