// Draws what this system paints of a page: the drop-down buttons of its combo boxes.
#pragma once

#include "file/status.h"
#include "render/page/page_view.h"

class CPDFDocument;
class CPDFPicture;

// A page that can be drawn.
struct PDF_DRAWN_PAGE {
    PDF_REF ref;
    PDF_PAGE_BOX box;
};

// Hands out the page number `number`, from 1. Fails where there is none, or it is no object of its own.
CPDFStatus find_page(CPDFDocument& document, int32_t number, PDF_DRAWN_PAGE& page);

// Paints the buttons of the page on `picture`, which has the size that `view` gives it. A read-only or hidden combo box
// has none.
void draw_buttons(CPDFDocument& document, const PDF_REF& page, const CPDFPageView& view, const CPDFPicture& picture);
