#include "appearance/draw/widget_picture.h"

#include <algorithm>

#include "appearance/draw/button.h"
#include "appearance/draw/frame.h"
#include "appearance/draw/list_box.h"
#include "appearance/draw/text_field.h"

namespace {

// Turns the picture about a corner and moves it back to where both axes begin.
void set_matrix(WIDGET_PICTURE& picture, int rotation)
{
    const double w = picture.width;
    const double h = picture.height;
    const double matrices[4][6] = {{1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, h, 0}, {-1, 0, 0, -1, w, h}, {0, -1, 1, 0, 0, w}};
    std::copy_n(matrices[rotation / 90], 6, picture.matrix);
}

void draw_contents(CPDFContentWriter& out, const WIDGET_LOOK& look, const WIDGET_FRAME& frame, WIDGET_STATE state,
                   WIDGET_PICTURE& picture)
{
    if (look.kind == WIDGET_KIND::CHECK_BOX || look.kind == WIDGET_KIND::RADIO_BUTTON) {
        if (state == WIDGET_STATE::ON)
            draw_mark(out, look, frame, picture);
        return;
    }
    if (!look.fonts)
        return;
    if (look.kind == WIDGET_KIND::PUSH_BUTTON)
        draw_caption(out, look, frame, picture);
    else if (look.kind == WIDGET_KIND::LIST_BOX)
        draw_rows(out, look, frame, picture);
    else
        draw_text(out, look, frame, picture);
}

}  // namespace

WIDGET_PICTURE draw_widget(const WIDGET_LOOK& look, WIDGET_STATE state)
{
    const WIDGET_FRAME frame = frame_of(look);
    WIDGET_PICTURE picture;
    picture.width = rounded(frame.width);
    picture.height = rounded(frame.height);
    set_matrix(picture, rotation_of(look));
    CPDFContentWriter out;
    draw_frame(out, look, frame, shape_of(look));
    draw_contents(out, look, frame, state, picture);
    picture.content = out.take();
    return picture;
}
