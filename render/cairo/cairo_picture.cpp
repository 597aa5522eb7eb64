#include "render/cairo/cairo_picture.h"

#include <algorithm>
#include <cstring>

#include "core/growable.h"
#include "core/library_calls.h"

namespace {

using PNG_BYTES = CPDFGrowable<char, 4096, 2>;

// The signature, then the length and the type of the first chunk, then its two sizes.
constexpr std::string_view PNG_HEAD("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
constexpr size_t PNG_SIZES_END = PNG_HEAD.size() + 8;

uint32_t big_endian(std::string_view bytes)
{
    uint32_t value = 0;
    for (const char byte : bytes.substr(0, 4))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

cairo_status_t read_bytes(void* closure, unsigned char* data, unsigned int length)
{
    auto& rest = *static_cast<std::string_view*>(closure);
    if (rest.size() < length)
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, rest.data(), length);
    rest.remove_prefix(length);
    return CAIRO_STATUS_SUCCESS;
}

cairo_status_t append_bytes(void* closure, const unsigned char* data, unsigned int length)
{
    return static_cast<PNG_BYTES*>(closure)->append(data, length) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_NO_MEMORY;
}

}  // namespace

void CPDFPicture::clear()
{
    cairo_destroy(m_context);
    cairo_surface_destroy(m_surface);
    m_context = nullptr;
    m_surface = nullptr;
}

bool CPDFPicture::create(int width, int height)
{
    clear();
    m_surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    m_context = cairo_create(m_surface);
    if (cairo_status(m_context) == CAIRO_STATUS_SUCCESS)
        return true;
    clear();
    return false;
}

bool CPDFPicture::paint_png(std::string_view png)
{
    const VXLibraryCalls calls;
    cairo_surface_t* page = cairo_image_surface_create_from_png_stream(read_bytes, &png);
    const bool is_read = cairo_surface_status(page) == CAIRO_STATUS_SUCCESS;
    if (is_read) {
        cairo_save(m_context);
        cairo_set_source_surface(m_context, page, 0, 0);
        cairo_paint(m_context);
        cairo_restore(m_context);
    }
    cairo_surface_destroy(page);
    return is_read;
}

bool CPDFPicture::append_png(std::string& png) const
{
    PNG_BYTES bytes;
    if (cairo_status(m_context) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_write_to_png_stream(m_surface, append_bytes, &bytes) != CAIRO_STATUS_SUCCESS)
        return false;
    png.append(bytes.data(), bytes.size());
    return true;
}

bool CPDFPicture::png_size(std::string_view png, uint32_t& width, uint32_t& height)
{
    if (png.size() < PNG_SIZES_END || png.substr(0, PNG_HEAD.size()) != PNG_HEAD)
        return false;
    width = big_endian(png.substr(PNG_HEAD.size()));
    height = big_endian(png.substr(PNG_HEAD.size() + 4));
    return true;
}
