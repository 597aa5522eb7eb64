#include "appearance/draw/text_painter.h"

#include <algorithm>

CPDFTextPainter::CPDFTextPainter(CPDFContentWriter& out, CPDFFontChoice& fonts, std::vector<PICTURE_FONT>& used,
                                 const TEXT_STYLE& style)
    : m_out(out), m_fonts(fonts), m_used(used), m_style(style)
{
    m_out.op("BT");
    m_out.color(style.color, PAINT_USE::FILL);
    if (style.spacing != 0)
        m_out.op({style.spacing}, "Tc");
    if (style.stretch != 1)
        m_out.op({style.stretch * 100}, "Tz");
    raise(style.rise);
}

void CPDFTextPainter::set_color(const WIDGET_COLOR& color)
{
    m_out.color(color.count == 0 ? WIDGET_COLOR{1, {0}} : color, PAINT_USE::FILL);
}

void CPDFTextPainter::raise(double rise)
{
    if (rounded(rise) == rounded(m_rise))
        return;
    m_out.op({rise}, "Ts");
    m_rise = rise;
}

void CPDFTextPainter::select(const CPDFTextFont& font)
{
    if (m_selected == &font)
        return;
    m_selected = &font;
    auto use = std::find_if(m_used.begin(), m_used.end(), [&](const PICTURE_FONT& f) { return f.font == &font; });
    if (use == m_used.end())
        use = m_used.insert(m_used.end(), {&font, m_fonts.resource_name(font)});
    m_out.name(use->name);
    m_out.op({m_style.size}, "Tf");
}

void CPDFTextPainter::move_to(double x, double y)
{
    // From written position to written position, so that roundings do not add up.
    m_out.op({rounded(x) - m_x, rounded(y) - m_y}, "Td");
    m_x = rounded(x);
    m_y = rounded(y);
}

void CPDFTextPainter::show(const SHAPED_TEXT& shaped, size_t begin, size_t end, double x, double y)
{
    if (begin < end)
        show(shaped, segments_on_line(shaped, begin, end), x, y);
}

void CPDFTextPainter::show(const SHAPED_TEXT& shaped, const std::vector<TEXT_SEGMENT>& segments, double x, double y)
{
    bool has_moved = false;
    for (const TEXT_SEGMENT& segment : segments) {
        if (segment.glyph_begin == segment.glyph_end)
            continue;
        select(*segment.run->font);
        if (!has_moved)
            move_to(x, y);
        has_moved = true;
        const TEXT_GLYPH* glyphs = shaped.glyphs.data();
        show_glyphs(*segment.run->font, glyphs + segment.glyph_begin, glyphs + segment.glyph_end);
    }
}

void CPDFTextPainter::show_glyphs(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end)
{
    while (begin != end) {
        const float height = begin->y_offset;
        const auto* next = std::find_if(begin, end, [height](const TEXT_GLYPH& g) { return g.y_offset != height; });
        raise(m_style.rise + height * m_style.size);
        const auto is_moved = [](const TEXT_GLYPH& g) { return g.x_offset != 0 || g.kern != 0; };
        if (std::any_of(begin, next, is_moved))
            show_moved(font, begin, next);
        else
            show_plain(font, begin, next);
        begin = next;
    }
    raise(m_style.rise);
}

void CPDFTextPainter::show_plain(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end)
{
    m_codes.clear();
    for (; begin != end; ++begin)
        font.append_code(begin->code, m_codes);
    m_out.string(m_codes);
    m_out.op("Tj");
}

void CPDFTextPainter::show_moved(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end)
{
    m_codes.clear();
    double right = 0;  // how far the pen has to move before the next glyph, as a part of the font size
    const auto move = [&] {
        if (rounded(right * 1000) == 0)
            return;
        if (!m_codes.empty())
            m_out.string(m_codes);
        m_codes.clear();
        m_out.number(-right * 1000);
        right = 0;
    };
    m_out.raw("[");
    for (; begin != end; ++begin) {
        right += begin->x_offset;
        move();
        font.append_code(begin->code, m_codes);
        right += begin->kern - begin->x_offset;
    }
    move();
    if (!m_codes.empty())
        m_out.string(m_codes);
    m_out.raw("] ");
    m_out.op("TJ");
}
