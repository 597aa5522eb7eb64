#include <gtest/gtest.h>

#include <vector>

#include "core/alloc.h"
#include "render/graphic_status.h"

namespace {

uint32_t packed(const _VXRGBA& pixel)
{
    return uint32_t{pixel.red} << 24 | pixel.green << 16 | pixel.blue << 8 | pixel.alpha;
}

TEST(DeviceGrayTest, ColoursOutsideTheRangeGoByTheLowByte)
{
    CPDFCSDeviceGray space;
    for (const int32_t level : {0, 240, 300, 0x1F0, -1, INT32_MIN}) {
        PDF_COLOR color = {{level, 7, 7, 7}};
        unsigned char gray = 0;
        _VXRGBA pixel = {};
        space.get_gray(color, gray);
        space.get_rgb(color, pixel);
        space.get_cmyk(color, color);
        EXPECT_EQ(gray, level & 0xFF);
        EXPECT_EQ(packed(pixel), gray * 0x01010100u + 255);
        EXPECT_TRUE(!color.comp[0] && !color.comp[1] && !color.comp[2]);
        EXPECT_EQ(static_cast<uint32_t>(color.comp[3]) + static_cast<uint32_t>(level), 255u);
    }
}

TEST(DeviceGrayTest, BatchesOfAnyLengthWriteWhatTheyShallAndNoMore)
{
    CPDFCSDeviceGray space;
    for (int n = -1; n <= 150; ++n) {
        SCOPED_TRACE(n);
        std::vector<unsigned char> in(n > 0 ? static_cast<size_t>(n) : 0);  // of the exact size: reading on is an error
        for (size_t i = 0; i < in.size(); ++i)
            in[i] = static_cast<unsigned char>(i * 37 + 5);
        const auto check = [&](size_t step, auto convert) {
            const size_t count = (in.size() + step - 1) / step;
            std::vector<_VXRGBA> out(count + 1, _VXRGBA{1, 2, 3, 4});
            (space.*convert)(out.data(), in.data(), n);
            for (size_t i = 0; i < count; ++i)
                EXPECT_EQ(packed(out[i]), in[i * step] * 0x01010100u + 255) << step << " at " << i;
            EXPECT_EQ(packed(out[count]), 0x01020304u);
        };
        check(1, &CPDFCSBase::batch_rgb);
        check(2, &CPDFCSBase::batch_rgb2);
        check(4, &CPDFCSBase::batch_rgb4);
        std::vector<unsigned char> pairs(in.size() * 2 + 1, 9);
        space.batch_gray(pairs.data(), in.data(), n);
        for (size_t i = 0; i < in.size(); ++i)
            EXPECT_TRUE(pairs[2 * i] == in[i] && pairs[2 * i + 1] == 255) << i;
        EXPECT_EQ(pairs.back(), 9);
    }
}

TEST(GraphicStatusTest, ACopySharesAllButTheStrokesElements)
{
    CPDFCSDeviceGray space;
    CPDFGraphicStatus state(nullptr);
    CPDFGraphicStatus* from = &state;
    const CPDFGraphicStatus fresh(from);
    EXPECT_TRUE(!fresh.stroke.elems && !fresh.stroke.elems_cnt && fresh.unit_a == VXFIX_ONE && fresh.int_b == 1);
    from->ctm.f = from->local_matrix.e = from->local_ctm.d = from->vals_a[2] = from->vals_b[1] = from->vals_c[3] = 3;
    from->flags[3] = 4;
    from->fill.cs = &space;
    from->stroke.elems = vx_alloc_array<int64_t>(2);
    from->stroke.elems[0] = 5;
    from->stroke.elems[1] = from->stroke.elems_val = 6;
    from->stroke.elems_cnt = 2;
    from->shared_a = {&space, 0, 10, 11};
    from->shared_b = {nullptr, 1, 12, 13};
    from->parent = from;
    {
        const CPDFGraphicStatus copy(from);
        EXPECT_NE(copy.stroke.elems, from->stroke.elems);
        EXPECT_TRUE(copy.stroke.elems_cnt == 2 && copy.stroke.elems_val == 6 && copy.stroke.elems[1] == 6);
        EXPECT_TRUE(copy.ctm.f == 3 && copy.local_matrix.e == 3 && copy.local_ctm.d == 3 && copy.vals_a[2] == 3 &&
                    copy.vals_b[1] == 3 && copy.vals_c[3] == 3 && copy.flags[3] == 4 && copy.fill.cs == &space);
        EXPECT_TRUE(copy.shared_a.ptr == &space && copy.shared_a.inherited == 1);
        EXPECT_TRUE(copy.shared_a.aux_int == 10 && copy.shared_a.aux_val == 11);
        EXPECT_TRUE(!copy.shared_b.inherited && !copy.shared_b.aux_int && !copy.shared_b.aux_val && !copy.parent);
    }
#ifdef FORMWORK_ALLOC_HOOK
    vx_fail_after(0);
    const CPDFGraphicStatus copy(from);
    EXPECT_TRUE(vx_has_failed());
    vx_fail_after(-1);
    EXPECT_TRUE(!copy.stroke.elems && !copy.stroke.elems_cnt && !copy.stroke.elems_val && copy.vals_c[3] == 3);
#endif
}

}  // namespace
