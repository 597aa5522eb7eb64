#include "appearance/text/shaped_text.h"

#include <algorithm>

#include "appearance/text/bidi.h"
#include "appearance/text/characters.h"
#include "core/limits.h"

namespace {

// More than this, as a part of the font size, no glyph is wide or off its place.
constexpr float LENGTH_MAX = 100;

constexpr char32_t JOINER = 0x200D;

float sane(float length)
{
    return length >= -LENGTH_MAX && length <= LENGTH_MAX ? length : 0;
}

class CPDFTextShaper {
public:
    CPDFTextShaper(CPDFFontChoice& fonts, SHAPED_TEXT& out) : m_fonts(fonts), m_own(fonts.own()), m_out(out) {}

    void shape(std::u32string_view value, TEXT_LINES lines)
    {
        take_characters(value, lines);
        m_out.characters.resize(m_out.text.size());
        m_out.glyphs.reserve(m_out.text.size());
        for (const TEXT_PARAGRAPH& paragraph : m_out.paragraphs)
            mark(paragraph);
        for (TEXT_PARAGRAPH& paragraph : m_out.paragraphs)
            make_runs(paragraph);
        for (TEXT_RUN& run : m_out.runs)
            shape_run(run);
    }

private:
    void take_characters(std::u32string_view value, TEXT_LINES lines)
    {
        const size_t limit = lines == TEXT_LINES::ONE ? LIMIT_DRAWN_LINE : LIMIT_DRAWN_TEXT;
        m_out.text.reserve(std::min(value.size(), limit));
        size_t begin = 0;
        for (size_t i = 0; i < value.size() && m_out.text.size() < limit; ++i) {
            const char32_t c = value[i];
            if (c == '\t') {
                m_out.text += U' ';
            } else if (is_line_end(c)) {
                i += c == '\r' && i + 1 < value.size() && value[i + 1] == '\n';
                if (lines == TEXT_LINES::MANY) {
                    m_out.paragraphs.push_back({begin, m_out.text.size()});
                    begin = m_out.text.size() + 1;
                }
                m_out.text += lines == TEXT_LINES::MANY ? U'\n' : U' ';
            } else if (!is_never_drawn(c) || is_control_of_lines(c)) {
                m_out.text += c;
                m_right_to_left |= is_right_to_left(c);
            }
        }
        m_out.paragraphs.push_back({begin, m_out.text.size()});
    }

    // Controls that leave no mark but tell directions and places to break.
    static bool is_control_of_lines(char32_t c) { return (c >= 0x200B && c <= 0x206F) || c == 0x61C; }

    void mark(const TEXT_PARAGRAPH& paragraph)
    {
        for (size_t i = paragraph.begin; i < paragraph.end; ++i) {
            const char32_t c = m_out.text[i];
            uint8_t& flags = m_out.characters[i].flags;
            if (is_break_space(c))
                flags = TEXT_SPACE;
            if (i == paragraph.begin)
                continue;
            if (joins_previous(c) || m_out.text[i - 1] == JOINER)
                flags |= TEXT_JOINED;
            else if (may_begin_line(m_out.text, i))
                flags |= TEXT_LINE_START;
        }
    }

    void make_runs(TEXT_PARAGRAPH& paragraph)
    {
        std::vector<uint8_t> levels;
        if (m_right_to_left) {
            const std::u32string_view text(m_out.text);
            levels =
                bidi_levels(text.substr(paragraph.begin, paragraph.end - paragraph.begin), paragraph.right_to_left);
        }
        CPDFTextFont* before = nullptr;
        for (size_t i = paragraph.begin; i < paragraph.end;) {
            size_t end = i + 1;
            while (end < paragraph.end && m_out.characters[end].flags & TEXT_JOINED)
                ++end;
            CPDFTextFont& font = font_for_cluster(i, end, before);
            for (; i < end; ++i) {
                if (!is_left_out(m_out.text[i], font))
                    add_to_run(i, font, levels.empty() ? 0 : levels[i - paragraph.begin]);
            }
            before = &font;
        }
    }

    // Fonts of documents know nothing of shaping, so what is only a hint would come out as a missing character.
    bool is_left_out(char32_t c, const CPDFTextFont& font) const
    {
        return c >= 0x80 && (is_never_drawn(c) || (is_shaping_hint(c) && &font == &m_own));
    }

    CPDFTextFont& font_for_cluster(size_t begin, size_t end, CPDFTextFont* before)
    {
        const char32_t base = m_out.text[begin];
        if (before && before != &m_own && is_break_space(base) && before->has(base))
            return *before;
        CPDFTextFont* font = font_for(base);
        for (size_t i = begin + 1; i < end; ++i) {
            const char32_t mark = m_out.text[i];
            if (is_shaping_hint(mark) || font->has(mark))
                continue;
            CPDFTextFont* other = m_fonts.font_for(mark);  // the font of a mark often has the letters, too
            if (other && other->has(base))
                font = other;
        }
        return *font;
    }

    CPDFTextFont* font_for(char32_t c)
    {
        if (m_own.has(c) || is_never_drawn(c))
            return &m_own;
        if (CPDFTextFont* font = m_fonts.font_for(c))
            return font;
        if (m_out.missing.size() < TEXT_MISSING_MAX && m_out.missing.find(c) == std::u32string::npos)
            m_out.missing += c;
        return &m_own;
    }

    void add_to_run(size_t at, CPDFTextFont& font, uint8_t level)
    {
        if (!m_out.runs.empty()) {
            TEXT_RUN& last = m_out.runs.back();
            if (last.end == at && last.font == &font && last.level == level) {
                ++last.end;
                return;
            }
        }
        m_out.runs.push_back({&font, at, at + 1, 0, 0, level});
    }

    void shape_run(TEXT_RUN& run)
    {
        const bool right_to_left = run.level % 2 != 0;
        if (right_to_left && run.font == &m_own) {
            for (size_t i = run.begin; i < run.end; ++i)
                m_out.text[i] = bidi_mirrored(m_out.text[i]);
        }
        run.glyph_begin = m_out.glyphs.size();
        run.font->shape(m_out.text, run.begin, run.end, right_to_left, m_out.glyphs);
        run.glyph_end = m_out.glyphs.size();
        for (size_t i = run.glyph_begin; i < run.glyph_end; ++i) {
            TEXT_GLYPH& glyph = m_out.glyphs[i];
            glyph.advance = sane(glyph.advance);
            glyph.cluster = static_cast<uint32_t>(std::clamp<size_t>(glyph.cluster, run.begin, run.end - 1));
            TEXT_CHARACTER& character = m_out.characters[glyph.cluster];
            character.advance += glyph.advance;
            ++character.glyphs;
        }
    }

    CPDFFontChoice& m_fonts;
    CPDFTextFont& m_own;
    SHAPED_TEXT& m_out;
    bool m_right_to_left = false;
};

// The glyphs of a run that stand for the characters [begin, end).
TEXT_SEGMENT part_of(const SHAPED_TEXT& shaped, const TEXT_RUN& run, size_t begin, size_t end)
{
    if (begin <= run.begin && end >= run.end)
        return {&run, run.glyph_begin, run.glyph_end};
    const TEXT_GLYPH* glyphs = shaped.glyphs.data();
    const bool backwards = run.level % 2 != 0;
    const auto first = std::partition_point(glyphs + run.glyph_begin, glyphs + run.glyph_end, [&](const TEXT_GLYPH& g) {
        return backwards ? g.cluster >= end : g.cluster < begin;
    });
    const auto last = std::partition_point(first, glyphs + run.glyph_end, [&](const TEXT_GLYPH& g) {
        return backwards ? g.cluster >= begin : g.cluster < end;
    });
    return {&run, static_cast<size_t>(first - glyphs), static_cast<size_t>(last - glyphs)};
}

// From the order of the text to that on the line: UAX 9, rule L2.
void reorder(std::vector<TEXT_SEGMENT>& segments)
{
    uint8_t highest = 0;
    for (const TEXT_SEGMENT& segment : segments)
        highest = std::max(highest, segment.run->level);
    for (uint8_t level = highest; level > 0; --level) {
        const auto is_below = [level](const TEXT_SEGMENT& s) { return s.run->level < level; };
        const auto is_within = [level](const TEXT_SEGMENT& s) { return s.run->level >= level; };
        for (auto at = segments.begin(); at != segments.end();) {
            const auto begin = std::find_if(at, segments.end(), is_within);
            at = std::find_if(begin, segments.end(), is_below);
            std::reverse(begin, at);
        }
    }
}

}  // namespace

SHAPED_TEXT shape_text(std::u32string_view value, TEXT_LINES lines, CPDFFontChoice& fonts)
{
    SHAPED_TEXT shaped;
    CPDFTextShaper(fonts, shaped).shape(value, lines);
    return shaped;
}

std::vector<TEXT_SEGMENT> segments_on_line(const SHAPED_TEXT& shaped, size_t begin, size_t end)
{
    std::vector<TEXT_SEGMENT> segments;
    auto run = std::partition_point(shaped.runs.begin(), shaped.runs.end(),
                                    [begin](const TEXT_RUN& r) { return r.end <= begin; });
    for (; run != shaped.runs.end() && run->begin < end; ++run)
        segments.push_back(part_of(shaped, *run, begin, end));
    reorder(segments);
    return segments;
}
