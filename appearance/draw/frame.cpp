#include "appearance/draw/frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/limits.h"

namespace {

// No page is larger (ISO 32000-2, Annex C).
constexpr double SIDE_MAX = 14400;

// What the most common form designer does:
// - a beveled edge is white above and left, and the background, darker by so much, below and right;
// - an inset one has two grays.
constexpr double BEVEL_DARKER = 0.25;
constexpr WIDGET_COLOR WHITE = {1, {1}};
constexpr WIDGET_COLOR INSET_DARK = {1, {0.5}};
constexpr WIDGET_COLOR INSET_LIGHT = {1, {0.753}};

constexpr size_t DASHES_MAX = 16;

// An eighth of a turn: edges of circles are lit from the upper left.
constexpr double DIAGONAL = 0.7071;

double sane_side(double side)
{
    return std::isfinite(side) ? std::min(std::abs(side), SIDE_MAX) : 0;
}

bool has_edges(const WIDGET_LOOK& look)
{
    return look.border.style == BORDER_STYLE::BEVELED || look.border.style == BORDER_STYLE::INSET;
}

WIDGET_COLOR darker(WIDGET_COLOR color)
{
    if (color.count == 0)
        color = WHITE;
    for (double& value : color.values)
        value = color.count == 4 ? std::min(value + BEVEL_DARKER, 1.0) : std::max(value - BEVEL_DARKER, 0.0);
    return color;
}

WIDGET_COLOR upper_edge(const WIDGET_LOOK& look)
{
    return look.border.style == BORDER_STYLE::BEVELED ? WHITE : INSET_DARK;
}

WIDGET_COLOR lower_edge(const WIDGET_LOOK& look)
{
    return look.border.style == BORDER_STYLE::BEVELED ? darker(look.background) : INSET_LIGHT;
}

void draw_edges(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame)
{
    const double b = frame.border;
    const double w = frame.width;
    const double h = frame.height;
    out.color(upper_edge(look), PAINT_USE::FILL);
    out.line(b, b, b, h - b);
    out.op({w - b, h - b}, "l");
    out.op({w - 2 * b, h - 2 * b}, "l");
    out.op({2 * b, h - 2 * b}, "l");
    out.op({2 * b, 2 * b}, "l");
    out.op("f");
    out.color(lower_edge(look), PAINT_USE::FILL);
    out.line(w - b, h - b, w - b, b);
    out.op({b, b}, "l");
    out.op({2 * b, 2 * b}, "l");
    out.op({w - 2 * b, 2 * b}, "l");
    out.op({w - 2 * b, h - 2 * b}, "l");
    out.op("f");
}

void draw_circle_edges(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame)
{
    const double radius = std::min(frame.width, frame.height) / 2 - 1.5 * frame.border;
    for (const double side : {1.0, -1.0}) {
        out.op("q");
        out.color(side > 0 ? upper_edge(look) : lower_edge(look), PAINT_USE::STROKE);
        out.op({DIAGONAL, DIAGONAL, -DIAGONAL, DIAGONAL, frame.width / 2, frame.height / 2}, "cm");
        const double r = radius * side;
        const double k = r * 0.5523;
        out.op({r, 0}, "m");
        out.op({r, k, k, r, 0, r}, "c");
        out.op({-k, r, -r, k, -r, 0}, "c");
        out.op("S");
        out.op("Q");
    }
}

void set_dashes(CPDFContentWriter& out, const std::vector<double>& dashes)
{
    const auto is_length = [](double dash) { return dash >= 0 && dash <= SIDE_MAX; };
    const auto is_drawn = [](double dash) { return dash >= 0.01; };
    if (dashes.size() > DASHES_MAX || !std::all_of(dashes.begin(), dashes.end(), is_length) ||
        std::none_of(dashes.begin(), dashes.end(), is_drawn))
        return;
    out.raw("[");
    for (const double dash : dashes)
        out.number(dash);
    out.raw("] ");
    out.op({0}, "d");
}

// The lines between the cells of a comb belong to its border.
void add_comb_lines(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame)
{
    if (!is_comb(look) || look.cells > LIMIT_COMB_LINES)
        return;
    for (int i = 1; i < look.cells; ++i) {
        const double x = frame.width * i / look.cells;
        out.line(x, frame.border / 2, x, frame.height - frame.border / 2);
    }
}

void draw_border(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, FRAME_SHAPE shape)
{
    if (look.border_color.count == 0 || frame.border <= 0)
        return;
    out.color(look.border_color, PAINT_USE::STROKE);
    if (frame.border != 1)
        out.op({frame.border}, "w");
    if (look.border.style == BORDER_STYLE::DASHED)
        set_dashes(out, look.border.dashes);
    const double half = frame.border / 2;
    if (shape == FRAME_SHAPE::CIRCLE)
        out.circle(frame.width / 2, frame.height / 2, std::min(frame.width, frame.height) / 2 - half);
    else if (look.border.style == BORDER_STYLE::UNDERLINE)
        out.line(0, half, frame.width, half);
    else
        out.rectangle(half, half, frame.width - frame.border, frame.height - frame.border);
    add_comb_lines(out, look, frame);
    out.op(shape == FRAME_SHAPE::CIRCLE ? "s" : "S");
}

}  // namespace

int rotation_of(const WIDGET_LOOK& look)
{
    const int rotation = (look.rotation % 360 + 360) % 360;
    return rotation % 90 == 0 ? rotation : 0;
}

WIDGET_FRAME frame_of(const WIDGET_LOOK& look)
{
    WIDGET_FRAME frame;
    frame.width = sane_side(look.width);
    frame.height = sane_side(look.height);
    if (rotation_of(look) % 180 != 0)
        std::swap(frame.width, frame.height);
    const double times = has_edges(look) ? 2 : 1;
    const double width = look.border.width > 0 ? sane_side(look.border.width) : 0;
    frame.border = std::min(width, std::min(frame.width, frame.height) / 2 / times);
    frame.inside = frame.border * times;
    frame.padding = 2 * frame.inside;
    return frame;
}

void draw_frame(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, FRAME_SHAPE shape)
{
    const bool edges = has_edges(look) && frame.border > 0;
    if (look.background.count == 0 && look.border_color.count == 0 && !edges)
        return;
    out.op("q");
    if (look.background.count > 0) {
        out.color(look.background, PAINT_USE::FILL);
        if (shape == FRAME_SHAPE::CIRCLE)
            out.circle(frame.width / 2, frame.height / 2, std::min(frame.width, frame.height) / 2);
        else
            out.rectangle(0, 0, frame.width, frame.height);
        out.op("f");
    }
    if (edges && shape == FRAME_SHAPE::RECTANGLE)
        draw_edges(out, look, frame);
    draw_border(out, look, frame, shape);
    if (edges && shape == FRAME_SHAPE::CIRCLE)
        draw_circle_edges(out, look, frame);
    out.op("Q");
}
