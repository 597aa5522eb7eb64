// How a page of a document lies in a picture.
#pragma once

#include <string>

#include "document/lookup/page_box.h"

// In pixels.
struct PICTURE_SIZE {
    double width, height;

    // As people read it.
    std::string text() const;
};

// Maps points of a page to pixels of its picture, which shows the crop box, turned as the page is. Pixels are counted from
// the upper left corner.
class CPDFPageView {
public:
    // `scale` is how many pixels a point takes.
    CPDFPageView(const PDF_PAGE_BOX& page, double scale) : m_page(page), m_scale(scale) {}

    double scale() const { return m_scale; }
    int32_t rotate() const { return m_page.rotate; }
    PICTURE_SIZE size() const { return size(-ROUNDING); }

    // Whether a picture of the page may have this size: what rounding makes of a whole number of pixels is either.
    bool may_have(const PICTURE_SIZE& picture) const;

    // Where a rectangle of the page lies in the picture.
    PDF_BOX place(const PDF_BOX& rect) const;

private:
    static constexpr double ROUNDING = 1e-4;

    PICTURE_SIZE size(double rounding) const;
    PDF_BOX scaled(const PDF_BOX& box) const;

    PDF_PAGE_BOX m_page;
    double m_scale;
};
