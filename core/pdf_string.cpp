#include "core/pdf_string.h"

#include <cstring>

#include "core/alloc.h"

bool PDF_String::assign(const void* bytes, int32_t size)
{
    len = 0;
    buf = nullptr;
    if (!bytes || size < 0)
        return false;
    auto* copy = static_cast<unsigned char*>(VXAlloc(static_cast<size_t>(size) + 1));
    if (!copy)
        return false;
    if (size > 0)
        std::memcpy(copy, bytes, static_cast<size_t>(size));
    copy[size] = 0;
    buf = copy;
    len = size;
    return true;
}

void PDF_String::take(PDF_String& src)
{
    *this = src;
    src = {0, nullptr};
}

void PDF_String::release()
{
    VXFree(buf);
    buf = nullptr;
    len = 0;
}

bool PDF_String::equals(const PDF_String& other) const
{
    return len == other.len && (len <= 0 || std::memcmp(buf, other.buf, static_cast<size_t>(len)) == 0);
}

bool PDF_String::equals(const char* text) const
{
    const size_t size = std::strlen(text);
    return len >= 0 && static_cast<size_t>(len) == size && (size == 0 || std::memcmp(buf, text, size) == 0);
}

void PDF_String::init(const wchar_t* text, int with_bom)
{
    len = 0;
    buf = nullptr;
    size_t units = 0;
    for (const wchar_t* w = text; w && *w; ++w)
        units += *w > 0xFFFF ? 2 : 1;
    const size_t mark = with_bom ? 2 : 0;
    if (units > (INT32_MAX - 3) / 2)
        return;
    buf = static_cast<unsigned char*>(VXAlloc(2 * units + mark + 1));
    if (!buf)
        return;
    unsigned char* out = buf;
    const auto put = [&out](uint32_t unit) {
        *out++ = static_cast<unsigned char>(unit >> 8);
        *out++ = static_cast<unsigned char>(unit);
    };
    if (with_bom)
        put(0xFEFF);
    for (const wchar_t* w = text; w && *w; ++w) {
        const auto c = static_cast<uint32_t>(*w);
        if (*w <= 0xFFFF) {
            put(c);
            continue;
        }
        put(0xD800 + (((c - 0x10000) >> 10) & 0x3FF));
        put(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
    *out = 0;
    len = static_cast<int32_t>(out - buf);
}
