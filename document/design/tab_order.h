// The order in which the tab key goes through the fields of a page (ISO 32000-2, 12.5.1).
#pragma once

#include <vector>

#include "document/edit/edit.h"

class CPDFField;

enum class PDF_TAB_ORDER {
    ROWS,       // from left to right, then down
    COLUMNS,    // down, then from left to right
    STRUCTURE,  // of a tagged document
    FIELDS,     // as they are given
};

struct PDF_TABS {
    PDF_TAB_ORDER by = PDF_TAB_ORDER::ROWS;
    std::vector<CPDFField*> fields;  // borrowed; of FIELDS, those that come first, while others stay as they are
    int32_t page = 0;                // the only one, counted from 1; 0 for all that have widgets
};

// Sets "Tabs" of the pages and orders the widgets in their "Annots", which most viewers go by. Rows and columns are those
// of the page as it is shown. The widgets of the form are bound. Refuses a page that isn't there, and the structure of an
// untagged document.
CPDFStatus order_tabs(EDIT_TARGET& target, const PDF_TABS& tabs);
