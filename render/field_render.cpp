// CPDFField: painting.

#include <initializer_list>

#include "forms/field.h"
#include "render/renderer.h"

namespace {

constexpr VXFIX UNIT = VXFIX_ONE;
constexpr VXFIX INSET = 3 * VXFIX_ONE;          // between the field's edges and the button
constexpr VXFIX BUTTON_WIDTH = 16 * VXFIX_ONE;  // in device units, as everything below
constexpr VXFIX ARROW_HALF_WIDTH = 3 * VXFIX_ONE;
constexpr VXFIX ARROW_HALF_HEIGHT = 2 * VXFIX_ONE;

constexpr int32_t GRAY_FACE = 240;
constexpr int32_t GRAY_LIGHT = 255;
constexpr int32_t GRAY_DARK = 160;
constexpr int32_t GRAY_ARROW = 0;

struct POINT {
    VXFIX x, y;
};

// Where the button of a field in `rect` lies on the device.
_VXRECTF button_box(const _VXMATRIX& m, const _VXRECTF& rect)
{
    _VXRECTF box = {fix_add(rect.x0, INSET), fix_add(rect.y0, INSET), fix_sub(rect.x1, INSET), fix_sub(rect.y1, INSET)};
    m.get_bound(box);
    box.x0 = fix_sub(box.x1, BUTTON_WIDTH);
    return box;
}

void set_gray(CPDFGRender& r, int32_t level)
{
    PDF_COLOR color = {};
    color.comp[0] = level;
    r.set_fill_color(&color);
}

void fill_shape(CPDFGRender& r, std::initializer_list<POINT> points)
{
    bool first = true;
    for (const POINT& point : points) {
        if (first)
            r.move_to(point.x, point.y);
        else
            r.line_to(point.x, point.y);
        first = false;
    }
    r.close_path();
    r.fill_path(&r.path_box, 1, 0);
    r.reset_path();
}

void fill_low_strip(CPDFGRender& r, const _VXRECTF& box)
{
    const VXFIX inner = fix_add(box.y0, UNIT);
    fill_shape(r, {{box.x0, inner}, {box.x0, box.y0}, {box.x1, box.y0}, {box.x1, inner}});
}

// Unlike the others, this strip lies outside the box.
void fill_high_strip(CPDFGRender& r, const _VXRECTF& box)
{
    const VXFIX outer = fix_add(box.y1, UNIT);
    fill_shape(r, {{box.x0, box.y1}, {box.x0, outer}, {box.x1, outer}, {box.x1, box.y1}});
}

void fill_left_strip(CPDFGRender& r, const _VXRECTF& box)
{
    const VXFIX inner = fix_add(box.x0, UNIT);
    fill_shape(r, {{box.x0, box.y0}, {box.x0, box.y1}, {inner, box.y1}, {inner, box.y0}});
}

void fill_right_strip(CPDFGRender& r, const _VXRECTF& box)
{
    const VXFIX inner = fix_sub(box.x1, UNIT);
    fill_shape(r, {{inner, box.y1}, {inner, box.y0}, {box.x1, box.y0}, {box.x1, box.y1}});
}

// `rise` leads from the centre to the base of the arrow, which points the other way.
void fill_arrow(CPDFGRender& r, const _VXRECTF& box, VXFIX rise)
{
    const VXFIX x = fix_add(box.x0, box.x1) >> 1;
    const VXFIX y = fix_add(box.y0, box.y1) >> 1;
    const VXFIX base = fix_add(y, rise);
    fill_shape(r, {{fix_sub(x, ARROW_HALF_WIDTH), base}, {x, fix_sub(y, rise)}, {fix_add(x, ARROW_HALF_WIDTH), base}});
}

void fill_button(CPDFGRender& r, const _VXRECTF& box, bool y_is_up)
{
    set_gray(r, GRAY_FACE);
    fill_shape(r, {{box.x0, box.y0}, {box.x0, box.y1}, {box.x1, box.y1}, {box.x1, box.y0}});
    set_gray(r, GRAY_LIGHT);
    (y_is_up ? fill_high_strip : fill_low_strip)(r, box);
    fill_left_strip(r, box);
    set_gray(r, GRAY_DARK);
    (y_is_up ? fill_low_strip : fill_high_strip)(r, box);
    fill_right_strip(r, box);
    set_gray(r, GRAY_ARROW);
    fill_arrow(r, box, y_is_up ? ARROW_HALF_HEIGHT : -ARROW_HALF_HEIGHT);
}

}  // namespace

void CPDFField::render(CPDFGRender* r, const _VXMATRIX& m, const _VXRECTF& rc)
{
    if (m_type == FIELD_CHOICE)
        render_choice(r, m, rc);
}

void CPDFField::render_choice(CPDFGRender* r, const _VXMATRIX& m, const _VXRECTF& rc)
{
    if ((m_flags & (FIELD_COMBO | FIELD_READ_ONLY)) != FIELD_COMBO)
        return;
    const _VXMATRIX to_device = m;  // `m` may be the renderer's own
    const _VXRECTF box = button_box(to_device, rc);
    r->set_matrix(VX_IDENTITY);
    r->before_push();
    r->push_state();
    CPDFCSDeviceGray gray;
    r->gs->fill.cs = &gray;
    fill_button(*r, box, to_device.d > 0);
    r->restore_state();
    r->set_matrix(to_device);
}
