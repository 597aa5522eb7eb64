#include "render/renderer.h"

#include <algorithm>
#include <climits>

#include "core/alloc.h"

namespace {

constexpr int32_t PATH_STEP = 256;

}  // namespace

CPDFGRender::CPDFGRender() : gs(new CPDFGraphicStatus(nullptr)) {}

CPDFGRender::~CPDFGRender()
{
    while (gs) {
        CPDFGraphicStatus* below = gs->parent;
        delete gs;
        gs = below;
    }
    VXFree(path_pts);
}

void CPDFGRender::before_push() {}

void CPDFGRender::restore_state()
{
    CPDFGraphicStatus* below = gs->parent;
    if (!below)
        return;
    delete gs;
    gs = below;
}

void CPDFGRender::set_fill_color(const PDF_COLOR* color)
{
    const int32_t count = gs->fill.cs ? std::clamp(gs->fill.cs->m_comp_cnt, 0, PDF_COLOR_COMPONENTS) : 0;
    std::copy_n(color->comp, count, gs->fill.color.comp);
}

// Makes room for more records; without memory the path is dropped with its room.
bool CPDFGRender::grow_path()
{
    void* grown = nullptr;
    if (path_cap <= INT32_MAX - PATH_STEP)
        grown = VXRealloc(path_pts, (static_cast<size_t>(path_cap) + PATH_STEP) * sizeof(PDF_PATH_POINT));
    if (!grown) {
        VXFree(path_pts);
        path_pts = nullptr;
        path_cap = 0;
        path_cnt = 0;
        return false;
    }
    path_pts = static_cast<PDF_PATH_POINT*>(grown);
    path_cap += PATH_STEP;
    return true;
}
