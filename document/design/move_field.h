// Widgets moved to other places, and fields made like others.
#pragma once

#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/edit/page_place.h"

class CPDFField;

// Where the widgets of a field are to stand.
struct PDF_MOVE {
    // One for each widget, in their order, or one for the first, which the others follow as they stand now. None: each on
    // `page` where it stands now. Page 0 is the one that a widget is on.
    std::vector<PDF_PLACE> places;
    int32_t page = 0;
};

// What moving changes in the looks of a field.
enum class PDF_MOVED_LOOK {
    SAME,
    SIZE,   // texts are to be laid out anew
    SHAPE,  // everything is: it is turned, or its sides relate in another way
};

// Moves the widgets of `field`, which are bound, upright on turned pages. Refuses a number of places that does not fit, and
// what check_place refuses; nothing is changed then. `turned_over` are those that stand on another page then.
CPDFStatus move_widgets(EDIT_TARGET& target, const CPDFField& field, const PDF_MOVE& move, PDF_MOVED_LOOK& look,
                        std::vector<PDF_REF>& turned_over);

// Makes a field `name` that is as `field` is, of which nothing but signatures and object names is left out, with widgets
// as move_widgets has them; a calculated one is calculated last. Refuses that and what add_field refuses about names.
// `copy` is the field then.
CPDFStatus copy_field(EDIT_TARGET& target, const CPDFField& field, const std::string& name, const PDF_MOVE& move,
                      CPDFField*& copy, PDF_MOVED_LOOK& look);
