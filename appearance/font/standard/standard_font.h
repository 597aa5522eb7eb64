// The standard 14 fonts and their metrics (ISO 32000-2, 9.6.2.2).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "appearance/font/standard/glyph_encoding.h"

enum class STANDARD_FONT : uint8_t {
    HELVETICA,
    HELVETICA_BOLD,
    HELVETICA_OBLIQUE,
    HELVETICA_BOLD_OBLIQUE,
    TIMES,
    TIMES_BOLD,
    TIMES_ITALIC,
    TIMES_BOLD_ITALIC,
    COURIER,
    COURIER_BOLD,
    COURIER_OBLIQUE,
    COURIER_BOLD_OBLIQUE,
    SYMBOL,
    ZAPF_DINGBATS,
};

// The box that lines are placed by, in thousandths of the font size.
struct STANDARD_BOX {
    int16_t ascent;
    int16_t descent;  // below the baseline, as a positive number
};

// The font that a "BaseFont" means, by its own name or that of a family as wide as it ("ArialMT", "TimesNewRoman,Bold",
// "ABCDEF+CourierNewPS-BoldMT"), or by the usual name of its resource ("Helv", "ZaDb"). Nothing for other fonts.
std::optional<STANDARD_FONT> find_standard_font(std::string_view name);

// The name that "BaseFont" has.
const char* standard_font_name(STANDARD_FONT font);

// The usual name of its resource, such as "Helv".
const char* standard_font_resource(STANDARD_FONT font);

STANDARD_BOX standard_box(STANDARD_FONT font);

// Whether the font has an encoding of its own, that of Symbol or ZapfDingbats.
bool is_symbolic(STANDARD_FONT font);

// The width of a glyph in thousandths of the font size; 0 for a glyph that the font lacks.
int standard_width(STANDARD_FONT font, std::string_view glyph);

// Names the glyphs of the font's own encoding: StandardEncoding, or that of Symbol or ZapfDingbats.
void name_own_glyphs(STANDARD_FONT font, GLYPH_NAMES& names);
