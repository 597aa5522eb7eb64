// What a widget is to whoever draws it: plain records, without a document. Lengths are points.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "appearance/font/text_font.h"
#include "appearance/text/color.h"
#include "appearance/text/default_appearance.h"

enum class WIDGET_KIND {
    TEXT,   // one line
    LINES,  // a text field of many lines
    COMB,   // one character to a cell
    PASSWORD,
    COMBO_BOX,
    LIST_BOX,
    CHECK_BOX,
    RADIO_BUTTON,
    PUSH_BUTTON,
};

enum class BORDER_STYLE { SOLID, DASHED, BEVELED, INSET, UNDERLINE };

struct WIDGET_BORDER {
    double width = 1;  // keeps text away also where no colour draws it
    BORDER_STYLE style = BORDER_STYLE::SOLID;
    std::vector<double> dashes = {3};  // of DASHED
};

enum class TEXT_ALIGNMENT { LEFT, CENTER, RIGHT };

struct WIDGET_LOOK {
    WIDGET_KIND kind = WIDGET_KIND::TEXT;
    double width = 0;  // of "Rect"
    double height = 0;
    int rotation = 0;  // "R" of "MK", counterclockwise in degrees

    WIDGET_BORDER border;
    WIDGET_COLOR border_color;
    WIDGET_COLOR background;

    CPDFFontChoice* fonts = nullptr;  // borrowed from the caller; never null where there is text or a mark
    TEXT_STYLE style;
    TEXT_ALIGNMENT alignment = TEXT_ALIGNMENT::LEFT;

    // The value as it is shown, the caption of a push button, or the mark of a check box or radio button, "CA" of "MK" with
    // the codes of ZapfDingbats: 4 check, l circle, 8 cross, u diamond, n square, H star. No text: the kind's usual mark.
    std::u32string text;
    int cells = 0;  // of COMB, "MaxLen"

    std::vector<std::u32string> rows;  // of LIST_BOX, as they are shown
    std::vector<size_t> selected;      // indices of rows
    size_t top_row = 0;
};

// A comb without a number of cells is a field of one line.
inline bool is_comb(const WIDGET_LOOK& look)
{
    return look.kind == WIDGET_KIND::COMB && look.cells > 0;
}

// What a check box or radio button shows.
enum class WIDGET_STATE { OFF, ON };
