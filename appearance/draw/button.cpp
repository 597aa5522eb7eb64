#include "appearance/draw/button.h"

#include <algorithm>

#include "appearance/draw/text_placing.h"

namespace {

// What the most common form designer does: a round mark is half as wide as the inside of the border, a cross is drawn with
// lines that stay one point away from it, and other marks are characters as high as the padding leaves room.
constexpr double ROUND_PART = 0.5;
constexpr double CROSS_AWAY = 1;

constexpr char32_t ROUND = 'l';
constexpr char32_t CROSS = '8';

// The marks by their codes in ZapfDingbats and their characters.
struct MARK {
    char32_t code;
    char32_t character;
};
constexpr MARK MARKS[] = {{'4', 0x2714}, {'u', 0x25C6}, {'n', 0x25A0}, {'H', 0x2605}, {'3', 0x2713}};

char32_t mark_of(const WIDGET_LOOK& look)
{
    if (!look.text.empty())
        return look.text[0];
    return look.kind == WIDGET_KIND::RADIO_BUTTON ? ROUND : U'4';
}

void draw_round_mark(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame)
{
    const double inside = std::min(frame.width, frame.height) / 2 - frame.inside;
    out.color(look.style.color, PAINT_USE::FILL);
    out.circle(frame.width / 2, frame.height / 2, inside * ROUND_PART);
    out.op("f");
}

void draw_cross(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame)
{
    const double half = std::max(std::min(frame.width, frame.height) / 2 - frame.inside - CROSS_AWAY, 0.0);
    const double x = frame.width / 2;
    const double y = frame.height / 2;
    clip_to_inside(out, frame, 0);
    out.color(look.style.color, PAINT_USE::STROKE);
    out.line(x - half, y + half, x + half, y - half);
    out.line(x - half, y - half, x + half, y + half);
    out.op("S");
}

// The text in the middle of the widget.
void draw_middle(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, const SHAPED_TEXT& shaped,
                 const TEXT_STYLE& style, WIDGET_PICTURE& picture)
{
    clip_to_inside(out, frame, 0);
    CPDFTextPainter painter(out, *look.fonts, picture.fonts, style);
    const size_t end = shaped.text.size();
    painter.show(shaped, 0, end, (frame.width - width_of(shaped, 0, end, style)) / 2,
                 middle_baseline(frame, line_box(look.fonts->own()), style.size));
    painter.end();
}

void draw_character(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
{
    std::u32string text = look.text.empty() ? std::u32string(1, mark_of(look)) : look.text;
    const auto* known =
        std::find_if(std::begin(MARKS), std::end(MARKS), [&](const MARK& m) { return m.code == text[0]; });
    if (text.size() == 1 && known != std::end(MARKS) && look.fonts->font_for(known->character))
        text[0] = known->character;
    const SHAPED_TEXT shaped = shape_text(text, TEXT_LINES::ONE, *look.fonts);
    note_missing(picture, shaped);
    TEXT_STYLE style = look.style;
    if (!has_size(style)) {
        const double height = std::max(frame.height - 2 * frame.padding, frame.height / 4);
        const double width = std::max(frame.width - 2 * frame.padding, frame.width / 4);
        style.size = height / line_height(line_box(look.fonts->own()));
        const double wide = width_of(shaped, 0, shaped.text.size(), style);
        if (wide > width)
            style.size *= width / wide;
    }
    draw_middle(out, look, frame, shaped, style, picture);
}

}  // namespace

FRAME_SHAPE shape_of(const WIDGET_LOOK& look)
{
    const bool is_round = look.kind == WIDGET_KIND::RADIO_BUTTON && mark_of(look) == ROUND;
    return is_round ? FRAME_SHAPE::CIRCLE : FRAME_SHAPE::RECTANGLE;
}

void draw_mark(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
{
    const char32_t mark = look.text.size() > 1 ? 0 : mark_of(look);
    out.op("q");
    if (mark == ROUND)
        draw_round_mark(out, look, frame);
    else if (mark == CROSS)
        draw_cross(out, look, frame);
    else if (look.fonts)
        draw_character(out, look, frame, picture);
    out.op("Q");
}

void draw_caption(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
{
    const SHAPED_TEXT shaped = shape_text(look.text, TEXT_LINES::ONE, *look.fonts);
    note_missing(picture, shaped);
    if (shaped.glyphs.empty())
        return;
    TEXT_STYLE style = look.style;
    if (!has_size(style))
        style.size = fit_one_line(shaped, one_line_room(frame), line_box(look.fonts->own()), style);
    out.op("q");
    draw_middle(out, look, frame, shaped, style, picture);
    out.op("Q");
}
