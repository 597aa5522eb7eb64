// Shows shaped text inside a text object (ISO 32000-2, 9.4).
#pragma once

#include <vector>

#include "appearance/draw/content_writer.h"
#include "appearance/draw/widget_picture.h"
#include "appearance/text/lines.h"

// One text object: BT is written when it is made, ET by end(). Positions are points in the coordinates of the stream.
class CPDFTextPainter {
public:
    // The writer, the choice and the list of fonts, which grows by those used, are borrowed until end().
    CPDFTextPainter(CPDFContentWriter& out, CPDFFontChoice& fonts, std::vector<PICTURE_FONT>& used,
                    const TEXT_STYLE& style);
    CPDFTextPainter(const CPDFTextPainter&) = delete;
    CPDFTextPainter& operator=(const CPDFTextPainter&) = delete;

    void set_color(const WIDGET_COLOR& color);

    // Shows the characters [begin, end) of one paragraph with their left end and baseline at x, y.
    void show(const SHAPED_TEXT& shaped, size_t begin, size_t end, double x, double y);
    void show(const SHAPED_TEXT& shaped, const std::vector<TEXT_SEGMENT>& segments, double x, double y);

    void end() { m_out.op("ET"); }

private:
    void select(const CPDFTextFont& font);
    void move_to(double x, double y);
    void show_glyphs(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end);
    void show_plain(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end);
    void show_moved(CPDFTextFont& font, const TEXT_GLYPH* begin, const TEXT_GLYPH* end);
    void raise(double rise);

    CPDFContentWriter& m_out;
    CPDFFontChoice& m_fonts;
    std::vector<PICTURE_FONT>& m_used;
    const TEXT_STYLE& m_style;
    const CPDFTextFont* m_selected = nullptr;  // borrowed from the choice
    double m_x = 0;                            // where the last line began, as it was written
    double m_y = 0;
    double m_rise = 0;
    std::string m_codes;
};
