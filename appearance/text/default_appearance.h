// The default appearance string "DA" of a field (ISO 32000-2, 12.7.4.3).
#pragma once

#include <string>
#include <string_view>

#include "appearance/text/color.h"

// Larger sizes are nonsense that would only break the arithmetic of whoever draws.
constexpr double TEXT_SIZE_MAX = 5000;

// How text is set. Lengths are points.
struct TEXT_STYLE {
    std::string font;    // resource name without slash; empty when none is named
    double size = 0;     // 0: fitted to the box
    WIDGET_COLOR color;  // no values: black
    double rise = 0;     // above the baseline
    double spacing = 0;  // added to the advance of every glyph
    double stretch = 1;  // widths are multiplied with it
};

// Reads a default appearance string. Of operators that come twice the last one counts; what can't be read is passed over,
// and numbers out of any reason give the default, so that every input gives a style that text can be set with.
TEXT_STYLE read_default_appearance(std::string_view bytes);

// The string that says `style`: the operators that a default appearance needs, and of the others those that change
// something.
std::string write_default_appearance(const TEXT_STYLE& style);
