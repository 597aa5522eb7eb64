// Marks of check boxes and radio buttons, captions of push buttons.
#pragma once

#include "appearance/draw/frame.h"
#include "appearance/draw/widget_picture.h"

// The shape of a button's background and border: radio buttons with a round mark are round.
FRAME_SHAPE shape_of(const WIDGET_LOOK& look);

// The mark of a check box or radio button that is on. Round marks and crosses need no font.
void draw_mark(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture);

// The look's fonts are not null.
void draw_caption(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture);
