// The rows of list boxes.
#pragma once

#include "appearance/draw/frame.h"
#include "appearance/draw/widget_picture.h"

// Writes one marked content sequence /Tx, and notes fonts and missing characters in the picture. The look's fonts are not
// null.
void draw_rows(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_PICTURE& picture);
