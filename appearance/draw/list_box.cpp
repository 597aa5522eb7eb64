#include "appearance/draw/list_box.h"

#include <algorithm>
#include <cmath>

#include "appearance/draw/text_placing.h"

namespace {

// What the most common form designer does: rows begin at the inside of the border and are as high as a line of their font,
// selected ones are black on this blue, and rows of free size have 12 points.
constexpr WIDGET_COLOR SELECTED = {3, {0.6, 0.757, 0.855}};
constexpr WIDGET_COLOR BLACK = {1, {0}};
constexpr double ROW_SIZE = 12;

class CPDFRowPainter {
public:
    CPDFRowPainter(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
        : m_out(out),
          m_look(look),
          m_frame(frame),
          m_picture(picture),
          m_style(look.style),
          m_box(line_box(look.fonts->own()))
    {
        if (!has_size(m_style))
            m_style.size = ROW_SIZE;
        if (m_style.color.count == 0)
            m_style.color = BLACK;
        m_height = line_height(m_box) * m_style.size;
        choose_rows();
    }

    void draw()
    {
        m_out.raw("/Tx ");
        m_out.op("BMC");
        if (!m_is_selected.empty()) {
            m_out.op("q");
            clip_to_inside(m_out, m_frame, 0);
            draw_selection();
            draw_texts();
            m_out.op("Q");
        }
        m_out.op("EMC");
    }

private:
    // The rows that can be seen, and which of them are selected.
    void choose_rows()
    {
        if (m_look.top_row >= m_look.rows.size())
            return;
        const double room = std::max(m_frame.height - 2 * m_frame.inside, 0.0);
        const size_t rows = m_look.rows.size() - m_look.top_row;
        const double visible = std::min(std::ceil(room / m_height), static_cast<double>(rows));
        m_is_selected.resize(static_cast<size_t>(visible));
        for (const size_t row : m_look.selected) {
            if (row >= m_look.top_row && row - m_look.top_row < m_is_selected.size())
                m_is_selected[row - m_look.top_row] = true;
        }
    }

    double foot_of(size_t row) const
    {
        return m_frame.height - m_frame.inside - m_height * static_cast<double>(row + 1);
    }

    void draw_selection()
    {
        for (size_t row = 0; row < m_is_selected.size(); ++row) {
            if (!m_is_selected[row])
                continue;
            m_out.color(SELECTED, PAINT_USE::FILL);
            m_out.rectangle(m_frame.inside, foot_of(row), m_frame.width - 2 * m_frame.inside, m_height);
            m_out.op("f");
        }
    }

    void draw_texts()
    {
        CPDFTextPainter painter(m_out, *m_look.fonts, m_picture.fonts, m_style);
        bool was_selected = false;
        for (size_t row = 0; row < m_is_selected.size(); ++row) {
            if (m_is_selected[row] != was_selected)
                painter.set_color(m_is_selected[row] ? BLACK : m_style.color);
            was_selected = m_is_selected[row];
            draw_text_of(row, painter);
        }
        painter.end();
    }

    void draw_text_of(size_t row, CPDFTextPainter& painter)
    {
        const SHAPED_TEXT shaped = shape_text(m_look.rows[m_look.top_row + row], TEXT_LINES::ONE, *m_look.fonts);
        note_missing(m_picture, shaped);
        const TEXT_LINE line = {0, shaped.text.size(), shaped.paragraphs[0].right_to_left};
        const double left = line_left(m_frame, m_look.alignment, line, width_of(shaped, line.begin, line.end, m_style));
        painter.show(shaped, line.begin, line.end, left, foot_of(row) + m_box.descent * m_style.size);
    }

    CPDFContentWriter& m_out;
    const WIDGET_LOOK& m_look;
    const WIDGET_FRAME& m_frame;
    WIDGET_PICTURE& m_picture;
    TEXT_STYLE m_style;
    const TEXT_FONT_BOX m_box;
    double m_height = 0;
    std::vector<bool> m_is_selected;  // for each visible row
};

}  // namespace

void draw_rows(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture)
{
    CPDFRowPainter(out, look, frame, picture).draw();
}
