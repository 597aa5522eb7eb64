#include "appearance/text/lines.h"

#include <algorithm>
#include <cmath>

namespace {

// The box of Helvetica, for fonts that have none.
constexpr TEXT_FONT_BOX USUAL_BOX = {0.949f, 0.207f};

// The most common form designer fills so much of the height of a box with a line of free size.
constexpr double ONE_LINE_PART = 0.94;

// It tries 8, then 6 or 10, then ... sixteenths for the size of many lines.
constexpr double LINES_SIZE_STEP = 1.0 / 16;

// Adding floats may exceed a width that they were made for.
constexpr double ROUNDING = 1e-4;

double advance_of(const TEXT_CHARACTER& character, const TEXT_STYLE& style)
{
    return (character.advance * style.size + character.glyphs * style.spacing) * style.stretch;
}

class CPDFLineBreaker {
public:
    CPDFLineBreaker(const SHAPED_TEXT& shaped, double width, const TEXT_STYLE& style, size_t limit)
        : m_characters(shaped.characters), m_width(width + ROUNDING), m_style(style), m_limit(limit)
    {
    }

    bool is_full() const { return m_lines.size() >= m_limit; }

    void add(const TEXT_PARAGRAPH& paragraph)
    {
        size_t begin = paragraph.begin;
        while (!is_full()) {
            const size_t next = end_of_line(begin, paragraph.end);
            size_t end = next;
            while (end > begin && m_characters[end - 1].flags & TEXT_SPACE)
                --end;
            m_lines.push_back({begin, end, paragraph.right_to_left});
            if (next >= paragraph.end)
                return;
            begin = next;
        }
    }

    std::vector<TEXT_LINE> take() { return std::move(m_lines); }

private:
    // Where the next line begins.
    size_t end_of_line(size_t begin, size_t end) const
    {
        double width = 0;
        size_t word = begin;     // the last place to break at
        size_t cluster = begin;  // that of a word which is too wide
        for (size_t i = begin; i < end; ++i) {
            const TEXT_CHARACTER& character = m_characters[i];
            if (character.flags & TEXT_LINE_START)
                word = i;
            if (!(character.flags & TEXT_JOINED) && character.glyphs > 0)
                cluster = i;
            width += advance_of(character, m_style);
            if (width <= m_width || character.flags & TEXT_SPACE)
                continue;
            if (word > begin)
                return word;
            if (cluster > begin)
                return cluster;
        }
        return end;
    }

    const std::vector<TEXT_CHARACTER>& m_characters;
    const double m_width;
    const TEXT_STYLE& m_style;
    const size_t m_limit;
    std::vector<TEXT_LINE> m_lines;
};

bool fits(const SHAPED_TEXT& shaped, const TEXT_ROOM& room, const TEXT_FONT_BOX& box, const TEXT_STYLE& style)
{
    // The last line's descent stands below the grid of lines.
    const double lines = (room.height / style.size - box.descent) / line_height(box);
    if (lines < 1)
        return false;
    const size_t count = static_cast<size_t>(std::min(lines, 1e6));
    return break_lines(shaped, room.width, style, count + 1).size() <= count;
}

}  // namespace

TEXT_FONT_BOX line_box(const CPDFTextFont& font)
{
    const TEXT_FONT_BOX box = font.box();
    const bool is_sane = box.ascent >= 0 && box.ascent <= 10 && box.descent >= -1 && box.descent <= 10 &&
                         box.ascent + box.descent >= 0.1f;
    return is_sane ? box : USUAL_BOX;
}

double width_of(const SHAPED_TEXT& shaped, size_t begin, size_t end, const TEXT_STYLE& style)
{
    double width = 0;
    for (size_t i = begin; i < end; ++i)
        width += advance_of(shaped.characters[i], style);
    return width;
}

std::vector<TEXT_LINE> break_lines(const SHAPED_TEXT& shaped, double width, const TEXT_STYLE& style, size_t limit)
{
    CPDFLineBreaker breaker(shaped, width, style, limit);
    for (const TEXT_PARAGRAPH& paragraph : shaped.paragraphs) {
        if (breaker.is_full())
            break;
        breaker.add(paragraph);
    }
    return breaker.take();
}

double fit_one_line(const SHAPED_TEXT& shaped, const TEXT_ROOM& room, const TEXT_FONT_BOX& box, const TEXT_STYLE& style)
{
    TEXT_STYLE fitted = style;
    fitted.size = std::max(ONE_LINE_PART * room.height / line_height(box), 0.1);
    const double width = width_of(shaped, 0, shaped.text.size(), fitted);
    if (width > room.width)
        fitted.size = std::min(fitted.size, std::max(fitted.size * room.width / width, TEXT_SIZE_MIN));
    return std::floor(fitted.size * 1000 + 0.001) / 1000;
}

double fit_many_lines(const SHAPED_TEXT& shaped, const TEXT_ROOM& room, const TEXT_FONT_BOX& box,
                      const TEXT_STYLE& style)
{
    TEXT_STYLE fitted = style;
    fitted.size = TEXT_SIZE_LINES;
    if (fits(shaped, room, box, fitted))
        return fitted.size;
    double below = TEXT_SIZE_MIN;
    for (double above = TEXT_SIZE_LINES; above - below > LINES_SIZE_STEP;) {
        fitted.size = (below + above) / 2;
        (fits(shaped, room, box, fitted) ? below : above) = fitted.size;
    }
    return below;
}
