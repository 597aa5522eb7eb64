// Background and border of a widget, and what they leave of it.
#pragma once

#include "appearance/draw/content_writer.h"
#include "appearance/draw/widget_look.h"

enum class FRAME_SHAPE { RECTANGLE, CIRCLE };

// The measures of a widget in the coordinates of its appearance, that is, before rotation.
struct WIDGET_FRAME {
    double width = 0;
    double height = 0;
    double border = 0;   // its line's width
    double inside = 0;   // what text is clipped to lies so far inside: beveled and inset borders count twice
    double padding = 0;  // what text stands in lies so far inside
};

// The measures; sizes that are no sizes are put right.
WIDGET_FRAME frame_of(const WIDGET_LOOK& look);

// The rotation of the look: 0, 90, 180 or 270.
int rotation_of(const WIDGET_LOOK& look);

void draw_frame(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, FRAME_SHAPE shape);
