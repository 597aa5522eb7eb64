// The measures of a font that a document tells with it.
#pragma once

// What a document says about an embedded font (ISO 32000-2, 9.8), in thousandths of the font size.
struct FONT_METRICS {
    int bbox[4] = {};  // left, bottom, right, top
    int ascent = 0;
    int descent = 0;  // negative below the baseline
    bool bold = false;
    bool italic = false;
};
