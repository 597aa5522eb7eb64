// Simple appearances of new fields: boxes, marks and circles drawn with paths, so that no font is needed.
#pragma once

#include <string>

// What a new widget shows. Texts and choices are left to the viewers.
enum class PDF_LOOK {
    BOX,  // an empty frame
    CHECK_OFF,
    CHECK_ON,  // a frame with a check mark
    RADIO_OFF,
    RADIO_ON,  // a circle with a dot
};

// The content of the form XObject, in a box of this size in points from its lower left corner, and the entries of its
// dictionary besides the length (ISO 32000-2, 8.10.2).
std::string look_content(PDF_LOOK look, double width, double height);
std::string look_entries(double width, double height);
