// Rectangles and affine matrices in fixed point (ISO 32000-2, 8.3.3).
#pragma once

#include <algorithm>

#include "render/fixed.h"

// Where the minima of an empty extent stand, and the maxima: growing it by a point needs no special case.
constexpr VXFIX FIX_BOUND_MAX = 0x1FFFFFFFC000000;
constexpr VXFIX FIX_BOUND_MIN = -0x200000000000000;

// Normalised when x0 <= x1 and y0 <= y1, which not every rectangle is.
struct _VXRECTF {
    VXFIX x0, y0, x1, y1;

    // Becomes the normalised rectangle with these opposite corners.
    void set_bound(VXFIX ax, VXFIX ay, VXFIX bx, VXFIX by)
    {
        *this = {std::min(ax, bx), std::min(ay, by), std::max(ax, bx), std::max(ay, by)};
    }

    // Grows an extent by a point.
    void add_point(VXFIX x, VXFIX y)
    {
        x0 = std::min(x0, x);
        y0 = std::min(y0, y);
        x1 = std::max(x1, x);
        y1 = std::max(y1, y);
    }
};

constexpr _VXRECTF VX_EMPTY_EXTENT = {FIX_BOUND_MAX, FIX_BOUND_MAX, FIX_BOUND_MIN, FIX_BOUND_MIN};

// Maps (x, y) to (a x + c y + e, b x + d y + f).
struct _VXMATRIX {
    VXFIX a, b, c, d, e, f;

    bool is_axis_aligned() const { return (b | c) == 0; }

    // Maps a point in place.
    void transform_point(VXFIX& x, VXFIX& y) const;

    // Replaces a rectangle by the bounding box of its image, normalised.
    void get_bound(_VXRECTF& rect) const;

    // Makes this the matrix that maps by what this one was, then by `other`, which may be this one.
    void do_multiply(const _VXMATRIX& other);

private:
    // The general cases, apart so that the common one is put in line.
    void get_turned_bound(_VXRECTF& rect) const;
    void get_upright_bound(_VXRECTF& rect) const;
};

constexpr _VXMATRIX VX_IDENTITY = {VXFIX_ONE, 0, 0, VXFIX_ONE, 0, 0};

inline void _VXMATRIX::transform_point(VXFIX& x, VXFIX& y) const
{
    if (is_axis_aligned()) {
        x = fix_add(fix_mul(a, x), e);
        y = fix_add(fix_mul(d, y), f);
        return;
    }
    const VXFIX from_x = x;
    const VXFIX from_y = y;
    x = fix_add(fix_add(fix_mul(a, from_x), fix_mul(c, from_y)), e);
    y = fix_add(fix_add(fix_mul(b, from_x), fix_mul(d, from_y)), f);
}

// Maps the ends of an interval by one coefficient. At most 0, it takes the ends in the other order and is the second
// operand.
inline void fix_map_interval(VXFIX& low, VXFIX& high, VXFIX scale)
{
    const VXFIX p = scale > 0 ? fix_mul_pos(low, scale) : fix_mul(high, scale);
    high = scale > 0 ? fix_mul_pos(high, scale) : fix_mul(low, scale);
    low = p;
}

inline void _VXMATRIX::get_turned_bound(_VXRECTF& rect) const
{
    const VXFIX x_of_x[] = {fix_mul(a, rect.x0), fix_mul(a, rect.x1)};
    const VXFIX y_of_x[] = {fix_mul(b, rect.x0), fix_mul(b, rect.x1)};
    const VXFIX x_of_y[] = {fix_mul(c, rect.y0), fix_mul(c, rect.y1)};
    const VXFIX y_of_y[] = {fix_mul(d, rect.y0), fix_mul(d, rect.y1)};
    _VXRECTF bound = {INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            bound.add_point(fix_add(fix_add(x_of_x[i], x_of_y[j]), e), fix_add(fix_add(y_of_x[i], y_of_y[j]), f));
        }
    }
    rect = bound;
}

inline void _VXMATRIX::get_upright_bound(_VXRECTF& rect) const
{
    fix_map_interval(rect.x0, rect.x1, a);
    fix_map_interval(rect.y0, rect.y1, d);
    rect.set_bound(fix_add(rect.x0, e), fix_add(rect.y0, f), fix_add(rect.x1, e), fix_add(rect.y1, f));
}

inline void _VXMATRIX::get_bound(_VXRECTF& rect) const
{
    if (!is_axis_aligned())
        return get_turned_bound(rect);
    if (!fix_are_page_coordinates(rect.x0, rect.y0, rect.x1, rect.y1) || !fix_are_small(a, d, a, d)) [[unlikely]]
        return get_upright_bound(rect);
    rect.set_bound(fix_add(fix_page_product(rect.x0, a), e), fix_add(fix_page_product(rect.y0, d), f),
                   fix_add(fix_page_product(rect.x1, a), e), fix_add(fix_page_product(rect.y1, d), f));
}

inline void _VXMATRIX::do_multiply(const _VXMATRIX& other)
{
    const _VXMATRIX t = *this;
    const _VXMATRIX o = other;
    // One test instead of sixteen: nearly every matrix neither enlarges nor shrinks much.
    if (fix_are_small(t.a, t.b, t.c, t.d) && fix_are_small(o.a, o.b, o.c, o.d)) [[likely]] {
        a = fix_add(fix_small_product(t.a, o.a), fix_small_product(t.b, o.c));
        b = fix_add(fix_small_product(t.a, o.b), fix_small_product(t.b, o.d));
        c = fix_add(fix_small_product(t.c, o.a), fix_small_product(t.d, o.c));
        d = fix_add(fix_small_product(t.c, o.b), fix_small_product(t.d, o.d));
    } else {
        a = fix_add(fix_mul(t.a, o.a), fix_mul(t.b, o.c));
        b = fix_add(fix_mul(t.a, o.b), fix_mul(t.b, o.d));
        c = fix_add(fix_mul(t.c, o.a), fix_mul(t.d, o.c));
        d = fix_add(fix_mul(t.c, o.b), fix_mul(t.d, o.d));
    }
    e = fix_add(fix_add(fix_mul(t.e, o.a), fix_mul(t.f, o.c)), o.e);
    f = fix_add(fix_add(fix_mul(t.e, o.b), fix_mul(t.f, o.d)), o.f);
}
