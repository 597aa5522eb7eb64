// The annotations of a page, changed, and the room that there is for them (ISO 32000-2, 7.7.3.3).
#pragma once

#include <unordered_set>

#include "core/object.h"
#include "core/xref_table.h"

class CPDFPageMap;

// A rectangle in points, from the lower left corner of the page's own space.
struct PDF_RECT {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    // What is shorter is empty: a file holds no more decimals. Rounding may make boxes differ by as much.
    static constexpr double SMALLEST = 0.001;

    bool holds(const PDF_RECT& other) const
    {
        return other.x >= x - SMALLEST && other.y >= y - SMALLEST && other.x + other.width <= x + width + SMALLEST &&
               other.y + other.height <= y + height + SMALLEST;
    }
};

// What can be seen of the page: its "CropBox", or else its "MediaBox", either inherited; empty boxes do not count. US
// Letter when there is none.
PDF_RECT page_box(CPDFXRefTable& xref, const PDF_REF& page);

// Makes sure that no other page has the list of annotations of the page number `page`: one that pages share is copied.
PDF_CHANGE_RESULT own_annotations(CPDFXRefTable& xref, CPDFPageMap& pages, int32_t page);

// Each changes "Annots", which may be missing, direct, or an object of its own.
PDF_CHANGE_RESULT add_annotation(CPDFXRefTable& xref, const PDF_REF& page, const PDF_REF& annotation);
PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page,
                                     const std::unordered_set<uint32_t>& gone);
