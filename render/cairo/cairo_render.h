// The renderer that draws with Cairo.
#pragma once

#include <cairo.h>

#include "render/renderer.h"

// Fills paths on a Cairo context, through whose matrix the device's coordinates go.
class CPDFCairoRender : public CPDFGRender {
public:
    // `context` is borrowed and outlives the renderer.
    explicit CPDFCairoRender(cairo_t* context) : m_context(context) {}

    // Paints in the fill colour as the fill colour space of the current state reads it; in black without one.
    void fill_path(_VXRECTF* box, int antialias, int even_odd) override;

private:
    void trace_path();

    cairo_t* m_context;  // borrowed
};
