// Making a new field with its widgets.
#pragma once

#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/edit/page_place.h"
#include "document/edit/set_field.h"

// A field that is to be added.
struct PDF_NEW_FIELD {
    PDF_FIELD_KIND_ID kind = KIND_TEXT;  // KIND_TEXT, _CHECK, _RADIO, _COMBO, _LIST, _PUSH or _SIGNATURE
    std::string name;                    // full name in UTF-8; groups on the way that are missing are made
    std::vector<PDF_PLACE> places;       // of its widgets; of a radio group one for each button, or one that they share
    std::vector<std::string>
        states;                // on states in UTF-8: of a check box at most one, "Yes" where none is given; of a radio
                               // group one for each button
    PDF_FIELD_CHANGE entries;  // flags, options and the like; the default is also the value
};

// Adds the field, in a form dictionary that is made when there is none, upright on turned pages; `added` is the field
// then. Its widgets are to be drawn: those of buttons name their states, but have no pictures of them. Refuses, with everything that is wrong, a kind that can't be added or what doesn't fit it, a name that is taken
// or below a field that can't hold others, too long or too deep to be found again, a page that isn't there, and a
// rectangle that is empty or not on the page; nothing is changed then. Of a group above it the field takes no flags, value
// or scripts, but the maximum length where it is given none. The widgets of the target are bound where a default is given.
CPDFStatus insert_field(EDIT_TARGET& target, const PDF_NEW_FIELD& field, CPDFField*& added);
