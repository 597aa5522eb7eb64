// Making a new field with its widgets.
#pragma once

#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/edit/set_field.h"

// A rectangle in points, from the lower left corner of the page's own space.
struct PDF_RECT {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    // What is shorter is empty: a file holds no more decimals. Rounding may make boxes differ by as much.
    static constexpr double SMALLEST = 0.001;
};

// A field that is to be added.
struct PDF_NEW_FIELD {
    PDF_FIELD_KIND_ID kind = KIND_TEXT;  // KIND_TEXT, _CHECK, _RADIO, _COMBO, _LIST or _SIGNATURE
    std::string name;                    // full name in UTF-8; groups on the way that are missing are made
    int32_t page = 1;                    // counted from 1
    std::vector<PDF_RECT> rects;         // one; of a radio group one for all buttons, which share it, or one for each
    std::vector<std::string>
        states;                // on states in UTF-8: of a check box at most one, "Yes" where none is given; of a radio
                               // group one for each button
    PDF_FIELD_CHANGE entries;  // flags, options and the like; the default is also the value
};

// Adds the field, in a form dictionary that is made when there is none, with simple appearances; `added` is the field
// then. Refuses, with everything that is wrong, a kind that can't be added or what doesn't fit it, a name that is taken
// or below a field that can't hold others, too long or too deep to be found again, a page that isn't there, and a
// rectangle that is empty or not on the page; nothing is changed then. Of a group above it the field takes no flags, value
// or scripts, but the maximum length where it is given none. The widgets of the target are bound where a default is given.
CPDFStatus insert_field(EDIT_TARGET& target, const PDF_NEW_FIELD& field, CPDFField*& added);
