// The graphics state of a renderer (ISO 32000-2, 8.4).
#pragma once

#include "render/color_space.h"
#include "render/matrix.h"

// Something that a state may take over from its parent. It belongs to whoever made it.
struct PDF_GS_SHARED {
    void* ptr;          // borrowed from whoever made it
    int32_t inherited;  // 1 when `ptr` was taken over from the parent state
    int32_t aux_int;
    int64_t aux_val;
};

// How lines are drawn; begins with the dash pattern.
struct PDF_STROKE_STATUS {
    int64_t* elems;     // owned by the state, from VXAlloc; null without a pattern
    int64_t elems_val;  // where in the pattern a line begins
    int32_t elems_cnt;
    int32_t cap;
    int32_t join;
    VXFIX width;
    VXFIX miter_limit;

    // Becomes the initial state: a solid line, 1.0 wide. What it held is not freed.
    void init();
};

// How areas are filled.
struct PDF_FILL_STATUS {
    CPDFCSBase* cs;   // borrowed from whoever set it; null before a colour space is set
    PDF_COLOR color;  // in `cs`

    // Becomes the initial state: no colour space, all components 0.
    void init();
};

// One state on a renderer's stack. It owns the elements of its stroke and nothing else.
class CPDFGraphicStatus {
public:
    // The initial state for a null `from`, otherwise a copy of it that shares what it points to, the stroke's elements
    // apart: those are duplicated, and left out when memory does not allow. `parent` is null either way.
    explicit CPDFGraphicStatus(CPDFGraphicStatus* from);
    ~CPDFGraphicStatus();
    CPDFGraphicStatus(const CPDFGraphicStatus&) = delete;
    CPDFGraphicStatus& operator=(const CPDFGraphicStatus&) = delete;

    _VXMATRIX ctm = VX_IDENTITY;
    PDF_GS_SHARED shared_a = {};
    PDF_STROKE_STATUS stroke;
    PDF_FILL_STATUS fill;
    _VXMATRIX local_matrix = VX_IDENTITY;
    _VXMATRIX local_ctm = VX_IDENTITY;  // local_matrix, then ctm
    int64_t vals_a[3] = {};             // this and what follows up to shared_b is only kept and copied
    VXFIX unit_a = VXFIX_ONE;
    int32_t int_a = 0;
    int64_t vals_b[2] = {};
    VXFIX unit_b = VXFIX_ONE;
    int64_t vals_c[4] = {};
    uint8_t flags[4] = {};
    int32_t int_b = 1;
    PDF_GS_SHARED shared_b = {};
    _VXRECTF bound = VX_EMPTY_EXTENT;
    CPDFGraphicStatus* parent = nullptr;  // owned by the renderer; the state below on its stack

private:
    void copy_stroke(const PDF_STROKE_STATUS& from);
};
