// The text of text fields and combo boxes.
#pragma once

#include "appearance/draw/frame.h"
#include "appearance/draw/widget_picture.h"

// Writes one marked content sequence /Tx, empty where nothing is shown, and notes fonts and missing characters in the
// picture. The look's fonts are not null.
void draw_text(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture);
