// Where text stands in a widget, as the most common form designer places it.
#pragma once

#include <algorithm>

#include "appearance/draw/frame.h"
#include "appearance/draw/text_painter.h"

// Whether a style says how large text is. What is no size, or nothing that a page has room for, is fitted to the box.
inline bool has_size(const TEXT_STYLE& style)
{
    return style.size >= 0.001 && style.size <= TEXT_SIZE_MAX;
}

// The baseline of a line in the middle of the widget: the font's box is centred, also where it is higher than the widget.
inline double middle_baseline(const WIDGET_FRAME& frame, const TEXT_FONT_BOX& box, double size)
{
    return frame.height / 2 - (static_cast<double>(box.ascent) - box.descent) / 2 * size;
}

// What text of free size has to fit into.
inline TEXT_ROOM one_line_room(const WIDGET_FRAME& frame)
{
    return {frame.width - 2 * frame.padding, frame.height - 2 * frame.inside};
}

// The left end of a line that is `width` wide. One that has no room shows its beginning.
inline double line_left(const WIDGET_FRAME& frame, TEXT_ALIGNMENT alignment, const TEXT_LINE& line, double width)
{
    const double room = frame.width - 2 * frame.padding - width;
    if (room < 0)
        return frame.padding + (line.right_to_left ? room : 0);
    const double parts[] = {0, 0.5, 1};
    return frame.padding + room * parts[static_cast<int>(alignment)];
}

// Clips to the inside of the border; `more` further at the sides.
inline void clip_to_inside(CPDFContentWriter& out, const WIDGET_FRAME& frame, double more)
{
    const double side = std::min(frame.inside + more, frame.width / 2);
    out.rectangle(side, frame.inside, frame.width - 2 * side, frame.height - 2 * frame.inside);
    out.op("W");
    out.op("n");
}

// Notes what no font has, each character once.
inline void note_missing(WIDGET_PICTURE& picture, const SHAPED_TEXT& shaped)
{
    for (const char32_t c : shaped.missing) {
        if (picture.missing.size() < TEXT_MISSING_MAX && picture.missing.find(c) == std::u32string::npos)
            picture.missing += c;
    }
}
