#include "render/cairo/cairo_render.h"

#include <algorithm>

namespace {

struct PIXEL_POINT {
    double x, y;
};

// A point in pixels. Cairo's own coordinates have 24 bits before the point.
PIXEL_POINT to_pixels(cairo_t* context, const PDF_PATH_POINT& point)
{
    constexpr double MOST = 1 << 22;
    constexpr auto UNIT = static_cast<double>(VXFIX_ONE);
    PIXEL_POINT at = {static_cast<double>(point.x) / UNIT, static_cast<double>(point.y) / UNIT};
    cairo_user_to_device(context, &at.x, &at.y);
    return {std::clamp(at.x, -MOST, MOST), std::clamp(at.y, -MOST, MOST)};
}

}  // namespace

void CPDFCairoRender::trace_path()
{
    cairo_matrix_t matrix;
    cairo_get_matrix(m_context, &matrix);
    cairo_new_path(m_context);
    for (int32_t i = 0; i < path_cnt; ++i) {
        const PDF_PATH_POINT point = path_pts[i];
        const PIXEL_POINT at = to_pixels(m_context, point);
        cairo_identity_matrix(m_context);
        if (point.op == PATH_MOVE)
            cairo_move_to(m_context, at.x, at.y);
        else if (point.op == PATH_LINE)
            cairo_line_to(m_context, at.x, at.y);
        else if (point.op == PATH_CLOSE)
            cairo_close_path(m_context);
        cairo_set_matrix(m_context, &matrix);
    }
}

void CPDFCairoRender::fill_path(_VXRECTF* /*box*/, int antialias, int even_odd)
{
    constexpr double FULL = 255;
    _VXRGBA pixel = {0, 0, 0, 255};
    if (gs->fill.cs)
        gs->fill.cs->get_rgb(gs->fill.color, pixel);
    trace_path();
    cairo_set_source_rgba(m_context, pixel.red / FULL, pixel.green / FULL, pixel.blue / FULL, pixel.alpha / FULL);
    cairo_set_antialias(m_context, antialias ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
    cairo_set_fill_rule(m_context, even_odd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    cairo_fill(m_context);
}
