#include "render/page/page_view.h"

#include <algorithm>
#include <cmath>

std::string PICTURE_SIZE::text() const
{
    return std::to_string(std::llround(width)) + " by " + std::to_string(std::llround(height)) + " pixels";
}

bool CPDFPageView::may_have(const PICTURE_SIZE& picture) const
{
    const PICTURE_SIZE least = size(-ROUNDING);
    const PICTURE_SIZE most = size(ROUNDING);
    return (picture.width == least.width || picture.width == most.width) &&
           (picture.height == least.height || picture.height == most.height);
}

PDF_BOX CPDFPageView::place(const PDF_BOX& rect) const
{
    const PDF_BOX& crop = m_page.crop;
    const PDF_BOX left = {rect.x0 - crop.x0, rect.y0 - crop.y0, rect.x1 - crop.x0, rect.y1 - crop.y0};
    const PDF_BOX right = {crop.x1 - rect.x1, crop.y1 - rect.y1, crop.x1 - rect.x0, crop.y1 - rect.y0};
    switch (m_page.rotate) {
    case 90:
        return scaled({left.y0, left.x0, left.y1, left.x1});
    case 180:
        return scaled({right.x0, left.y0, right.x1, left.y1});
    case 270:
        return scaled({right.y0, right.x0, right.y1, right.x1});
    default:
        return scaled({left.x0, right.y0, left.x1, right.y1});
    }
}

// A page takes every pixel that it reaches into.
PICTURE_SIZE CPDFPageView::size(double rounding) const
{
    const double width = std::max(1.0, std::ceil(m_page.crop.width() * m_scale + rounding));
    const double height = std::max(1.0, std::ceil(m_page.crop.height() * m_scale + rounding));
    return m_page.rotate % 180 == 0 ? PICTURE_SIZE{width, height} : PICTURE_SIZE{height, width};
}

PDF_BOX CPDFPageView::scaled(const PDF_BOX& box) const
{
    return {box.x0 * m_scale, box.y0 * m_scale, box.x1 * m_scale, box.y1 * m_scale};
}
