#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "core/alloc.h"
#include "forms/field.h"
#include "render/renderer.h"

namespace {

std::string units(VXFIX value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", static_cast<double>(value) / static_cast<double>(VXFIX_ONE));
    return text;
}

// Writes down every operation, and the path as it was filled.
class RecordingRender : public CPDFGRender {
public:
    void before_push() override
    {
        EXPECT_EQ(gs->parent, nullptr);
        EXPECT_TRUE(matrix.a == VXFIX_ONE && matrix.d == VXFIX_ONE && matrix.e == 0 && gs->ctm.d == VXFIX_ONE);
        log += "push\n";
    }

    void restore_state() override
    {
        CPDFGRender::restore_state();
        EXPECT_TRUE(gs && !gs->parent);
        log += "restore";
    }

    void set_fill_color(const PDF_COLOR* color) override
    {
        ASSERT_TRUE(gs->parent && gs->fill.cs);
        EXPECT_TRUE(gs->fill.cs->m_kind == 1 && gs->fill.cs->m_comp_cnt == 1);
        CPDFGRender::set_fill_color(color);
        EXPECT_EQ(gs->fill.color.comp[0], color->comp[0]);
        log += "gray " + std::to_string(color->comp[0]) + "\n";
    }

    void fill_path(_VXRECTF* box, int antialias, int even_odd) override
    {
        EXPECT_TRUE(box == &path_box && antialias == 1 && even_odd == 0);
        for (int32_t i = 0; i < path_cnt; ++i) {
            const PDF_PATH_POINT point = path_pts[i];
            log += point.op == PATH_CLOSE ? "z" : point.op == PATH_MOVE ? "m" : "l";
            if (point.op != PATH_CLOSE)
                log += units(point.x) + "," + units(point.y) + " ";
        }
        log += " in " + units(box->x0) + "," + units(box->y0) + "-" + units(box->x1) + "," + units(box->y1) + "\n";
    }

    std::string log;
};

constexpr VXFIX fix(double value)
{
    return static_cast<VXFIX>(value * static_cast<double>(VXFIX_ONE));
}

_VXRECTF rect(double width, double height)
{
    return {0, 0, fix(width), fix(height)};
}

class FieldRenderTest : public testing::Test {
protected:
    FieldRenderTest()
    {
        combo.m_type = FIELD_CHOICE;
        combo.m_flags = FIELD_COMBO;
    }

    CPDFField combo;
    RecordingRender renderer;
};

TEST_F(FieldRenderTest, PaintsTheWholeButtonInBothOrientations)
{
    const std::string face = "push\ngray 240\nm81,3 l81,17 l97,17 l97,3 z in 81,3-97,17\n";
    const std::string low = "m81,4 l81,3 l97,3 l97,4 z in 81,3-97,4\n";
    const std::string high = "m81,17 l81,18 l97,18 l97,17 z in 81,17-97,18\n";
    const std::string left = "m81,3 l81,17 l82,17 l82,3 z in 81,3-82,17\n";
    const std::string right = "m96,17 l96,3 l97,3 l97,17 z in 96,3-97,17\n";
    const std::string up = "gray 0\nm86,12 l89,8 l92,12 z in 86,8-92,12\nrestore";
    const std::string down = "gray 0\nm86,8 l89,12 l92,8 z in 86,8-92,12\nrestore";

    combo.render(&renderer, VX_IDENTITY, rect(100, 20));
    EXPECT_EQ(renderer.log, face + "gray 255\n" + high + left + "gray 160\n" + low + right + up);
    EXPECT_TRUE(renderer.path_cnt == 0 && renderer.path_cap == 256 && renderer.path_box.x0 == FIX_BOUND_MAX);

    renderer.log.clear();
    renderer.gs->local_matrix.e = fix(5);
    combo.render(&renderer, {VXFIX_ONE, 0, 0, -VXFIX_ONE, 0, fix(20)}, rect(100, 20));
    EXPECT_EQ(renderer.log, face + "gray 255\n" + low + left + "gray 160\n" + high + right + down);
    EXPECT_EQ(renderer.path_cap, 256);
    EXPECT_TRUE(renderer.matrix.d == -VXFIX_ONE && renderer.gs->ctm.f == fix(20) && renderer.gs->local_ctm.e == fix(5));

    // The renderer's own matrix is as good as any other.
    const std::string before = std::exchange(renderer.log, "");
    combo.render(&renderer, renderer.matrix, rect(100, 20));
    EXPECT_EQ(renderer.log, before);
    EXPECT_EQ(renderer.matrix.d, -VXFIX_ONE);
}

TEST_F(FieldRenderTest, OnlyTheInsetScalesWithTheMatrix)
{
    const struct {
        _VXMATRIX matrix;
        _VXRECTF rect;
        const char* face;
        const char* arrow;
    } cases[] = {
        {{fix(2), 0, 0, fix(2), fix(10), fix(10)}, rect(100, 20), "188,16-204,44", "m193,32 l196,28 l199,32 "},
        {VX_IDENTITY, rect(100, 5), "81,2-97,3", "m86,4.5 l89,0.5 l92,4.5 "},
        {VX_IDENTITY, rect(10, 20), "-9,3-7,17", "m-4,12 l-1,8 l2,12 "},
        {{0, fix(1), fix(1), 0, 0, 0}, rect(100, 20), "1,3-17,97", "m6,48 l9,52 l12,48 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.face);
        renderer.log.clear();
        combo.render(&renderer, c.matrix, c.rect);
        EXPECT_EQ(renderer.log.find(std::string(" in ") + c.face + "\n"), renderer.log.find(" in ")) << renderer.log;
        EXPECT_NE(renderer.log.find(c.arrow), std::string::npos) << renderer.log;
    }
    combo.render(&renderer, VX_IDENTITY, {0, fix(-6) - 1, fix(16), fix(6)});
    const VXFIX tip = renderer.path_pts[1].y;  // of the arrow, which came last; its middle is rounded down
    EXPECT_EQ(tip, -1 - fix(2));
}

TEST_F(FieldRenderTest, EverythingElseLeavesTheRendererAlone)
{
    constexpr uint32_t READ_ONLY_COMBO = FIELD_COMBO | FIELD_READ_ONLY;
    const std::pair<int32_t, uint32_t> cases[] = {
        {FIELD_CHOICE, 0}, {FIELD_CHOICE, READ_ONLY_COMBO}, {FIELD_TEXT, FIELD_COMBO}, {FIELD_UNKNOWN, FIELD_COMBO}};
    for (const auto& [type, flags] : cases) {
        combo.m_type = type;
        combo.m_flags = flags;
        combo.render(&renderer, {fix(2), 0, 0, fix(2), 0, 0}, rect(100, 20));
        EXPECT_TRUE(renderer.log.empty() && renderer.matrix.a == VXFIX_ONE) << type << " " << flags;
    }
}

TEST_F(FieldRenderTest, OperandsAtTheLimitsWrap)
{
    for (const VXFIX limit : {INT64_MIN, INT64_MAX, FIX_BOUND_MIN, FIX_BOUND_MAX}) {
        for (const VXFIX other : {VXFIX{0}, limit, ~limit}) {
            renderer.log.clear();
            combo.render(&renderer, {limit, other, other, limit, limit, other}, {limit, other, ~limit, limit});
            EXPECT_EQ(std::count(renderer.log.begin(), renderer.log.end(), 'z'), 6);
            EXPECT_TRUE(renderer.matrix.a == limit && renderer.gs->ctm.f == other);
        }
    }
}

#ifdef FORMWORK_ALLOC_HOOK

TEST_F(FieldRenderTest, WithoutMemoryThePathStartsAnew)
{
    vx_fail_after(0);
    combo.render(&renderer, VX_IDENTITY, rect(100, 20));
    EXPECT_TRUE(vx_has_failed());
    vx_fail_after(-1);
    // The first point is lost, but not for the box.
    EXPECT_EQ(renderer.log.find("push\ngray 240\nl81,17 l97,17 l97,3 z in 81,3-97,17\ngray 255\nm81,17"), 0u)
        << renderer.log;

    renderer.move_to(0, 0);
    while (renderer.path_cnt < renderer.path_cap)
        renderer.line_to(VXFIX_ONE, VXFIX_ONE);
    vx_fail_after(0);
    renderer.close_path();
    vx_fail_after(-1);
    EXPECT_TRUE(renderer.path_cnt == 0 && renderer.path_cap == 0 && !renderer.path_pts);
    EXPECT_EQ(renderer.path_box.x1, VXFIX_ONE);
}

#endif

}  // namespace
