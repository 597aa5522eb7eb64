#include "appearance/draw/text_field.h"

#include <algorithm>
#include <cmath>

#include "appearance/draw/text_placing.h"
#include "appearance/text/lines.h"
#include "core/limits.h"

namespace {

// The shown text of a password: as many of these as it has characters.
std::u32string hidden(const std::u32string& text, CPDFTextFont& font)
{
    const char32_t mark = font.has('*') || !font.has(0x2022) ? U'*' : char32_t{0x2022};
    return std::u32string(std::min(text.size(), LIMIT_DRAWN_LINE), mark);
}

void draw_one_line(CPDFTextPainter& painter, const WIDGET_LOOK& look, const WIDGET_FRAME& frame,
                   const SHAPED_TEXT& shaped, const TEXT_STYLE& style)
{
    const TEXT_LINE line = {0, shaped.text.size(), shaped.paragraphs[0].right_to_left};
    const double left = line_left(frame, look.alignment, line, width_of(shaped, line.begin, line.end, style));
    painter.show(shaped, line.begin, line.end, left, middle_baseline(frame, line_box(look.fonts->own()), style.size));
}

// The first baseline of many lines is a whole line below the padding. In a widget that is too low for that, it is where
// nothing of the line is lost.
double first_baseline(const WIDGET_FRAME& frame, const TEXT_FONT_BOX& box, double size)
{
    const double usual = frame.height - frame.padding - line_height(box) * size;
    const double lowest = frame.inside + box.descent * size;
    return std::max(usual, std::min(lowest, middle_baseline(frame, box, size)));
}

void draw_lines(CPDFTextPainter& painter, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, const SHAPED_TEXT& shaped,
                const TEXT_STYLE& style)
{
    const TEXT_FONT_BOX box = line_box(look.fonts->own());
    const double height = line_height(box) * style.size;
    const double top = first_baseline(frame, box, style.size);
    const double visible = std::min(1 + (top + box.ascent * style.size) / height, 1e6);
    const auto lines = break_lines(shaped, frame.width - 2 * frame.padding, style, static_cast<size_t>(visible));
    double baseline = top;
    for (const TEXT_LINE& line : lines) {
        const double left = line_left(frame, look.alignment, line, width_of(shaped, line.begin, line.end, style));
        painter.show(shaped, line.begin, line.end, left, baseline);
        baseline -= height;
    }
}

// A cluster in a cell, from left to right.
struct COMB_CLUSTER {
    size_t begin;
    size_t end;
    size_t place;  // of its first glyph
};

std::vector<COMB_CLUSTER> clusters_of(const SHAPED_TEXT& shaped, size_t limit)
{
    std::vector<COMB_CLUSTER> clusters;
    for (size_t i = 0; i < shaped.text.size() && clusters.size() < limit;) {
        const size_t begin = i++;
        while (i < shaped.text.size() && (shaped.characters[i].flags & TEXT_JOINED || shaped.characters[i].glyphs == 0))
            ++i;
        clusters.push_back({begin, i, 0});
    }
    return clusters;
}

void order_on_line(const SHAPED_TEXT& shaped, std::vector<COMB_CLUSTER>& clusters)
{
    if (std::all_of(shaped.runs.begin(), shaped.runs.end(), [](const TEXT_RUN& run) { return run.level == 0; }))
        return;
    std::vector<size_t> places(shaped.text.size());
    size_t place = 0;
    for (const TEXT_SEGMENT& segment : segments_on_line(shaped, 0, shaped.text.size())) {
        for (size_t i = segment.glyph_begin; i < segment.glyph_end; ++i)
            places[shaped.glyphs[i].cluster] = ++place;
    }
    for (COMB_CLUSTER& cluster : clusters)
        cluster.place = places[cluster.begin];
    std::stable_sort(clusters.begin(), clusters.end(),
                     [](const COMB_CLUSTER& a, const COMB_CLUSTER& b) { return a.place < b.place; });
}

void draw_comb(CPDFTextPainter& painter, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, const SHAPED_TEXT& shaped,
               const TEXT_STYLE& style)
{
    const size_t cells = static_cast<size_t>(look.cells);
    const double cell = frame.width / look.cells;
    const double baseline = middle_baseline(frame, line_box(look.fonts->own()), style.size);
    std::vector<COMB_CLUSTER> clusters = clusters_of(shaped, cells);
    order_on_line(shaped, clusters);
    const size_t left_over = cells - clusters.size();
    const size_t firsts[] = {0, left_over / 2, left_over};
    double left = cell * static_cast<double>(firsts[static_cast<int>(look.alignment)]);
    for (const COMB_CLUSTER& cluster : clusters) {
        const double width = width_of(shaped, cluster.begin, cluster.end, style);
        painter.show(shaped, cluster.begin, cluster.end, left + (cell - width) / 2, baseline);
        left += cell;
    }
}

double widest_cluster(const SHAPED_TEXT& shaped, const TEXT_STYLE& style)
{
    double widest = 0;
    for (const COMB_CLUSTER& cluster : clusters_of(shaped, shaped.text.size()))
        widest = std::max(widest, width_of(shaped, cluster.begin, cluster.end, style));
    return widest;
}

double fitted_size(const WIDGET_LOOK& look, const WIDGET_FRAME& frame, const SHAPED_TEXT& shaped)
{
    const TEXT_FONT_BOX box = line_box(look.fonts->own());
    if (look.kind == WIDGET_KIND::LINES) {
        const TEXT_ROOM room = {frame.width - 2 * frame.padding, frame.height - frame.padding - frame.inside};
        return fit_many_lines(shaped, room, box, look.style);
    }
    if (!is_comb(look))
        return fit_one_line(shaped, one_line_room(frame), box, look.style);
    TEXT_STYLE style = look.style;
    style.size = fit_one_line(SHAPED_TEXT(), one_line_room(frame), box, style);
    const double widest = widest_cluster(shaped, style);
    const double cell = frame.width / look.cells;
    return widest > cell ? std::min(style.size, std::max(style.size * cell / widest, TEXT_SIZE_MIN)) : style.size;
}

}  // namespace

void draw_text(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
{
    const TEXT_LINES lines = look.kind == WIDGET_KIND::LINES ? TEXT_LINES::MANY : TEXT_LINES::ONE;
    const SHAPED_TEXT shaped = look.kind == WIDGET_KIND::PASSWORD
                                   ? shape_text(hidden(look.text, look.fonts->own()), lines, *look.fonts)
                                   : shape_text(look.text, lines, *look.fonts);
    note_missing(picture, shaped);
    out.raw("/Tx ");
    out.op("BMC");
    if (!shaped.glyphs.empty()) {
        TEXT_STYLE style = look.style;
        if (!has_size(style))
            style.size = fitted_size(look, frame, shaped);
        out.op("q");
        clip_to_inside(out, frame, look.kind == WIDGET_KIND::COMBO_BOX ? frame.inside : 0);
        CPDFTextPainter painter(out, *look.fonts, picture.fonts, style);
        if (look.kind == WIDGET_KIND::LINES)
            draw_lines(painter, look, frame, shaped, style);
        else if (is_comb(look))
            draw_comb(painter, look, frame, shaped, style);
        else
            draw_one_line(painter, look, frame, shaped, style);
        painter.end();
        out.op("Q");
    }
    out.op("EMC");
}
