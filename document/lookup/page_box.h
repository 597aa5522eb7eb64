// The part of a page that is shown (ISO 32000-2, 7.7.3.3 and 14.11.2).
#pragma once

#include <unordered_map>

#include "core/object.h"

class CPDFDictionary;

// A rectangle in points, normalised: x0 <= x1, y0 <= y1.
struct PDF_BOX {
    double x0, y0, x1, y1;

    double width() const { return x1 - x0; }
    double height() const { return y1 - y0; }
    bool is_empty() const { return x0 >= x1 || y0 >= y1; }
};

// The crop box of a page, within its media box, and the turn with which it is shown.
struct PDF_PAGE_BOX {
    PDF_BOX crop;
    int32_t rotate;  // degrees clockwise: 0, 90, 180 or 270
};

// The rectangle that an entry is: an array of four numbers, any two opposite corners. False, with `box` unchanged, for
// anything else.
bool read_box(CPDFXRefTable& xref, const CPDFObj* entry, PDF_BOX& box);

// The rectangle of the widget that is this object; all zero where it has none.
PDF_BOX widget_box(CPDFXRefTable& xref, const PDF_REF& widget);

// The quarter turn that an entry is, as 0, 90, 180 or 270; 0 for anything but a multiple of 90.
int32_t read_rotation(CPDFXRefTable& xref, const CPDFObj* entry);

// Reads the boxes and the turn of the page `page`, its own or inherited through "Parent". Without a usable media box
// the page is 612 by 792 points large; a crop box outside the media box is not looked at.
PDF_PAGE_BOX read_page_box(CPDFXRefTable& xref, const CPDFDictionary& page);

// The same for the page that is this object; 612 by 792 points where it is missing.
PDF_PAGE_BOX read_page_box(CPDFXRefTable& xref, const PDF_REF& page);

// The same, read once for each page: a page that lists thousands of annotations takes long to read.
class CPDFPageBoxes {
public:
    const PDF_PAGE_BOX& of(CPDFXRefTable& xref, const PDF_REF& page);

private:
    std::unordered_map<uint32_t, PDF_PAGE_BOX> m_known;  // by object number
};
