// A font file as a form's own font: cut down to the characters of WinAnsiEncoding, so that viewers can set with it what is
// typed (ISO 32000-2, 9.6.3).
#pragma once

#include <string>
#include <vector>

#include "appearance/font/fallback/font_metrics.h"

constexpr int FORM_FONT_FIRST = 32;  // the code that the widths begin with
constexpr int FORM_FONT_LAST = 255;

struct FORM_FONT {
    std::string name;     // PostScript name
    std::string program;  // a TrueType font, or the bare CFF one
    bool is_cff = false;
    std::vector<int> widths;  // of the codes, in thousandths of the font size; 0 where the font has no glyph
    FONT_METRICS metrics;
};

// Reads the file at `path`. False, with a sentence in `problem`, where it is no font with TrueType or named CFF outlines, its
// maker does not allow a part of it to be embedded, or the libraries for fonts are missing.
bool read_form_font(const std::string& path, FORM_FONT& out, std::string& problem);
