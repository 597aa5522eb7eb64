// The annotations of a page, changed, and the room that there is for them (ISO 32000-2, 7.7.3.3).
#pragma once

#include <unordered_set>

#include "core/object.h"
#include "core/xref_table.h"

// A rectangle in points, from the lower left corner of the page's own space.
struct PDF_RECT {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool holds(const PDF_RECT& other) const
    {
        return other.x >= x && other.y >= y && other.x + other.width <= x + width &&
               other.y + other.height <= y + height;
    }
};

// What can be seen of the page: its "CropBox", or else its "MediaBox", either inherited. US Letter when there is none.
PDF_RECT page_box(CPDFXRefTable& xref, const PDF_REF& page);

// Each changes "Annots", which may be missing, direct, or an object of its own.
PDF_CHANGE_RESULT add_annotation(CPDFXRefTable& xref, const PDF_REF& page, const PDF_REF& annotation);
PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page,
                                     const std::unordered_set<uint32_t>& gone);
