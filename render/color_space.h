// Colour values and the DeviceGray colour space (ISO 32000-2, 8.6.4.2).
#pragma once

#include <cstdint>

// Room for the components of any colour space (ISO 32000-1, annex C: at most 32).
constexpr int PDF_COLOR_COMPONENTS = 32;

// A colour; each component of a device colour space is 0 to 255. Components that the colour space does not have mean
// nothing.
struct PDF_COLOR {
    int32_t comp[PDF_COLOR_COMPONENTS];
};

// One pixel; an alpha of 255 is opaque.
struct _VXRGBA {
    unsigned char red, green, blue, alpha;
};

enum PDF_CS_KIND : int32_t {
    CS_DEVICE_GRAY = 1,
};

// A colour space: what the components of its colours mean.
class CPDFCSBase {
public:
    CPDFCSBase(int32_t kind, int32_t comp_cnt) : m_kind(kind), m_comp_cnt(comp_cnt) {}
    virtual ~CPDFCSBase() = default;
    CPDFCSBase(const CPDFCSBase&) = delete;
    CPDFCSBase& operator=(const CPDFCSBase&) = delete;

    // A colour as gray, as a pixel and as CMYK, whose four components may lie outside 0 to 255 when the colour's do.
    virtual void get_gray(const PDF_COLOR& color, unsigned char& out) = 0;
    virtual void get_rgb(const PDF_COLOR& color, _VXRGBA& out) = 0;
    virtual void get_cmyk(const PDF_COLOR& color, PDF_COLOR& out) = 0;

    // The initial colour: sets the first four components to 0.
    virtual void get_default_color(PDF_COLOR& out);

    // Image samples, `n` bytes at `src`, to `dst`; an `n` of 0 or less writes nothing. The input must not overlap the
    // output. Pixels, one for each byte.
    virtual void batch_rgb(_VXRGBA* dst, const unsigned char* src, int n) = 0;
    // Gray and an alpha of 255, two bytes for each byte.
    virtual void batch_gray(unsigned char* dst, const unsigned char* src, int n) = 0;
    // Pixels, one for each group of 2 or 4 bytes, made from the first of them; the last group may be cut short.
    virtual void batch_rgb2(_VXRGBA* dst, const unsigned char* src, int n) = 0;
    virtual void batch_rgb4(_VXRGBA* dst, const unsigned char* src, int n) = 0;

    // Whether overprint is supported: 0.
    virtual int support_op();

    int32_t m_kind;      // PDF_CS_KIND
    int32_t m_comp_cnt;  // components of a colour
};

class CPDFCSDeviceGray : public CPDFCSBase {
public:
    CPDFCSDeviceGray() : CPDFCSBase(CS_DEVICE_GRAY, 1) {}

    void get_gray(const PDF_COLOR& color, unsigned char& out) override;
    void get_rgb(const PDF_COLOR& color, _VXRGBA& out) override;
    void get_cmyk(const PDF_COLOR& color, PDF_COLOR& out) override;
    void batch_rgb(_VXRGBA* dst, const unsigned char* src, int n) override;
    void batch_gray(unsigned char* dst, const unsigned char* src, int n) override;
    void batch_rgb2(_VXRGBA* dst, const unsigned char* src, int n) override;
    void batch_rgb4(_VXRGBA* dst, const unsigned char* src, int n) override;
};
