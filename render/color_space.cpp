#include "render/color_space.h"

#include <bit>
#include <cstring>

namespace {

constexpr int BLOCK = 16;

// A pixel as one number, which compilers join faster than four bytes. OR with OPAQUE makes any alpha 255.
constexpr uint32_t OPAQUE = std::bit_cast<uint32_t>(_VXRGBA{0, 0, 0, 255});

constexpr uint32_t gray_pixel(uint32_t level)
{
    return level | level << 8 | level << 16 | level << 24 | OPAQUE;
}

// The byte that lies first in memory.
template <typename GROUP>
constexpr uint32_t first_byte(GROUP group)
{
    return std::endian::native == std::endian::little ? group & 0xFFu : group >> (8 * (sizeof(GROUP) - 1));
}

// Blocks of a known size that go through arrays of their own: compilers vectorise them, and need not ask whether the
// output overlaps the input.
template <typename GROUP>
void batch(_VXRGBA* dst, const unsigned char* src, int n)
{
    constexpr int SIZE = sizeof(GROUP);
    for (; n >= BLOCK * SIZE; n -= BLOCK * SIZE) {
        GROUP groups[BLOCK];
        uint32_t pixels[BLOCK];
        std::memcpy(groups, src, sizeof groups);
        for (int i = 0; i < BLOCK; ++i)
            pixels[i] = gray_pixel(first_byte(groups[i]));
        std::memcpy(dst, pixels, sizeof pixels);
        src += sizeof groups;
        dst += BLOCK;
    }
    for (int i = 0; i < n; i += SIZE)
        *dst++ = std::bit_cast<_VXRGBA>(gray_pixel(src[i]));
}

}  // namespace

void CPDFCSBase::get_default_color(PDF_COLOR& out)
{
    for (int i = 0; i < 4; ++i)
        out.comp[i] = 0;
}

int CPDFCSBase::support_op()
{
    return 0;
}

void CPDFCSDeviceGray::get_gray(const PDF_COLOR& color, unsigned char& out)
{
    out = static_cast<unsigned char>(color.comp[0]);
}

void CPDFCSDeviceGray::get_rgb(const PDF_COLOR& color, _VXRGBA& out)
{
    out = std::bit_cast<_VXRGBA>(gray_pixel(static_cast<unsigned char>(color.comp[0])));
}

void CPDFCSDeviceGray::get_cmyk(const PDF_COLOR& color, PDF_COLOR& out)
{
    const uint32_t black = 255 - static_cast<uint32_t>(color.comp[0]);
    out.comp[0] = out.comp[1] = out.comp[2] = 0;
    out.comp[3] = static_cast<int32_t>(black);
}

void CPDFCSDeviceGray::batch_rgb(_VXRGBA* dst, const unsigned char* src, int n)
{
    batch<uint8_t>(dst, src, n);
}

void CPDFCSDeviceGray::batch_gray(unsigned char* dst, const unsigned char* src, int n)
{
    for (int i = 0; i < n; ++i) {
        *dst++ = src[i];
        *dst++ = 255;
    }
}

void CPDFCSDeviceGray::batch_rgb2(_VXRGBA* dst, const unsigned char* src, int n)
{
    batch<uint16_t>(dst, src, n);
}

void CPDFCSDeviceGray::batch_rgb4(_VXRGBA* dst, const unsigned char* src, int n)
{
    batch<uint32_t>(dst, src, n);
}
