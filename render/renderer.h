// What fields are painted on: a path under construction, a stack of graphics states, and the operations of a device.
#pragma once

#include "render/graphic_status.h"

enum PDF_PATH_OP : int32_t {
    PATH_MOVE = 0,
    PATH_LINE = 1,
    PATH_CLOSE = 4,
};

// One record of a path, packed: nothing lies between its members. A close has the point (0, 0).
#pragma pack(push, 4)
struct PDF_PATH_POINT {
    int32_t op;  // PDF_PATH_OP
    VXFIX x;
    VXFIX y;
};
#pragma pack(pop)

// The base of renderers; a device implements fill_path. Used by one painter at a time.
class CPDFGRender {
public:
    // Begins with an empty path, the identity matrix and one graphics state.
    CPDFGRender();
    virtual ~CPDFGRender();
    CPDFGRender(const CPDFGRender&) = delete;
    CPDFGRender& operator=(const CPDFGRender&) = delete;

    // Called when a painter is about to push its state; does nothing here.
    virtual void before_push();

    // Ends the current state: the one below becomes current. The first state stays.
    virtual void restore_state();

    // Makes `color` the fill colour of the current state: as many components as its fill colour space has, and none
    // without one.
    virtual void set_fill_color(const PDF_COLOR* color);

    // Fills the path with the fill colour. `box` is path_box; `antialias` is 1 or 0; `even_odd` is 0 for the nonzero
    // winding number rule and 1 for the even-odd rule (ISO 32000-2, 8.5.3.3). Open subpaths are closed; the path stays.
    virtual void fill_path(_VXRECTF* box, int antialias, int even_odd) = 0;

    // Each appends a record and grows path_box by its point. When memory runs out the whole path is dropped, the point
    // included; path_box keeps what it has grown by.
    void move_to(VXFIX x, VXFIX y) { add_point(PATH_MOVE, x, y); }
    void line_to(VXFIX x, VXFIX y) { add_point(PATH_LINE, x, y); }

    // Closes a path of three or more records that is not closed yet.
    void close_path()
    {
        if (path_cnt >= 3 && path_pts && path_pts[path_cnt - 1].op != PATH_CLOSE)
            append(PATH_CLOSE, 0, 0);
    }

    // Empties the path and keeps its room.
    void reset_path()
    {
        path_cnt = 0;
        path_box = VX_EMPTY_EXTENT;
    }

    // Makes `m` the current matrix, that of the current state too.
    void set_matrix(const _VXMATRIX& m)
    {
        matrix = m;
        gs->ctm = matrix;
        gs->local_ctm = gs->local_matrix;
        gs->local_ctm.do_multiply(matrix);
    }

    // Puts a copy of the current state on top of it.
    void push_state()
    {
        auto* pushed = new CPDFGraphicStatus(gs);
        pushed->parent = gs;
        gs = pushed;
    }

    _VXRECTF path_box = VX_EMPTY_EXTENT;  // extent of the path's points
    int32_t path_cnt = 0;                 // records in use
    int32_t path_cap = 0;                 // records that there is room for
    PDF_PATH_POINT* path_pts = nullptr;   // owned, from VXRealloc
    CPDFGraphicStatus* gs;                // owned, with those below it; the current state
    _VXMATRIX matrix = VX_IDENTITY;

private:
    void add_point(int32_t op, VXFIX x, VXFIX y)
    {
        path_box.add_point(x, y);
        append(op, x, y);
    }
    void append(int32_t op, VXFIX x, VXFIX y)
    {
        if (path_cnt < path_cap || grow_path())
            path_pts[path_cnt++] = {op, x, y};
    }
    bool grow_path();
};
