#include "render/graphic_status.h"

#include <cstring>

#include "core/alloc.h"

namespace {

constexpr VXFIX MITER_LIMIT = 10 * VXFIX_ONE;

PDF_GS_SHARED inherit(const PDF_GS_SHARED& from)
{
    return from.ptr ? PDF_GS_SHARED{from.ptr, 1, from.aux_int, from.aux_val} : PDF_GS_SHARED{};
}

}  // namespace

void PDF_STROKE_STATUS::init()
{
    *this = {};
    width = VXFIX_ONE;
    miter_limit = MITER_LIMIT;
}

void PDF_FILL_STATUS::init()
{
    *this = {};
}

CPDFGraphicStatus::CPDFGraphicStatus(CPDFGraphicStatus* from)
{
    if (!from) {
        stroke.init();
        fill.init();
        return;
    }
    copy_stroke(from->stroke);
    fill = from->fill;
    local_matrix = from->local_matrix;
    local_ctm = from->local_ctm;
    std::memcpy(vals_a, from->vals_a, sizeof vals_a);
    unit_a = from->unit_a;
    int_a = from->int_a;
    std::memcpy(vals_b, from->vals_b, sizeof vals_b);
    unit_b = from->unit_b;
    std::memcpy(vals_c, from->vals_c, sizeof vals_c);
    shared_a = inherit(from->shared_a);
    shared_b = inherit(from->shared_b);
    std::memcpy(flags, from->flags, sizeof flags);
    int_b = from->int_b;
    bound = from->bound;
    ctm = from->ctm;
}

CPDFGraphicStatus::~CPDFGraphicStatus()
{
    VXFree(stroke.elems);
}

void CPDFGraphicStatus::copy_stroke(const PDF_STROKE_STATUS& from)
{
    stroke = from;
    const size_t count = from.elems_cnt > 0 ? static_cast<size_t>(from.elems_cnt) : 0;
    stroke.elems = count ? vx_alloc_array<int64_t>(count) : nullptr;
    if (stroke.elems) {
        std::memcpy(stroke.elems, from.elems, count * sizeof(int64_t));
        return;
    }
    stroke.elems_val = 0;
    stroke.elems_cnt = 0;
}
