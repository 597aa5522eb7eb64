// The appearance stream of a widget (ISO 32000-2, 12.5.5).
#pragma once

#include <string>
#include <vector>

#include "appearance/draw/widget_look.h"

struct PICTURE_FONT {
    const CPDFTextFont* font;  // borrowed from the look's font choice
    std::string name;          // in the resources of the stream, without slash
};

struct WIDGET_PICTURE {
    std::string content;
    double width = 0;  // "BBox" is [0 0 width height]
    double height = 0;
    double matrix[6] = {1, 0, 0, 1, 0, 0};  // "Matrix"
    std::vector<PICTURE_FONT> fonts;        // those that the content uses, in the order of their first use
    std::u32string missing;                 // characters that no font has, each once
};

// Draws a widget; `state` is for check boxes and radio buttons. Every input gives a picture.
WIDGET_PICTURE draw_widget(const WIDGET_LOOK& look, WIDGET_STATE state);
