// A picture in memory, read and written as PNG by Cairo.
#pragma once

#include <cairo.h>

#include <string>
#include <string_view>

// An ARGB picture. After a failure it is empty.
class CPDFPicture {
public:
    CPDFPicture() = default;
    ~CPDFPicture() { clear(); }
    CPDFPicture(const CPDFPicture&) = delete;
    CPDFPicture& operator=(const CPDFPicture&) = delete;

    // Makes a transparent picture of this size in pixels. False when it is too large or memory runs out.
    bool create(int width, int height);

    // Paints a PNG file over the picture, its corner at the picture's. False when the bytes can't be read as PNG.
    bool paint_png(std::string_view png);

    // Appends the picture as a PNG file. False when memory runs out.
    bool append_png(std::string& png) const;

    // Where to draw; owned by the picture, null when it is empty.
    cairo_t* context() const { return m_context; }

    // The size that the head of a PNG file tells, in pixels. False when the bytes don't begin as PNG does.
    static bool png_size(std::string_view png, uint32_t& width, uint32_t& height);

private:
    void clear();

    cairo_surface_t* m_surface = nullptr;  // owned
    cairo_t* m_context = nullptr;          // owned
};
