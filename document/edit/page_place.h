// Where widgets stand.
#pragma once

#include <map>
#include <unordered_set>
#include <vector>

#include "document/edit/edit.h"

// A rectangle in points, from the lower left corner of the page's own space.
struct PDF_RECT {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    // What is shorter is empty: a file holds no more decimals. Rounding may make boxes differ by as much.
    static constexpr double SMALLEST = 0.001;
};

struct PDF_PLACE {
    PDF_RECT rect;
    int32_t page = 1;  // counted from 1
};

// Notes in `refusals` a page that isn't there, and a rectangle that is empty or not on it.
void check_place(EDIT_TARGET& target, const PDF_PLACE& place, CPDFRefusals& refusals);

// The array that is "Rect".
std::string rect_syntax(const PDF_RECT& rect);

// The quarter turn, as 0, 90, 180 or 270, that makes a widget stand upright on the page as it is shown: "R" of "MK".
int32_t upright_turn(EDIT_TARGET& target, int32_t page);

// Widgets and the pages that are to list them.
using PDF_PAGE_WIDGETS = std::map<int32_t, std::vector<PDF_REF>>;

// Lists the widgets on these pages, whose lists no other pages then have.
PDF_CHANGE_RESULT list_on_pages(EDIT_TARGET& target, const PDF_PAGE_WIDGETS& widgets);

// Takes it off every page.
PDF_CHANGE_RESULT take_off_pages(EDIT_TARGET& target, const std::unordered_set<uint32_t>& gone);
