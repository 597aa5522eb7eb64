#include "file/filter/compress.h"

#include <zlib.h>

#include "file/filter/filters.h"

unsigned char* flate_compress(const void* data, size_t len, size_t& out_len)
{
    out_len = 0;
    CPDFBytes out;
    uLongf packed = compressBound(len);
    uint8_t* at = out.room(packed);
    if (!at)
        return nullptr;
    if (compress(at, &packed, static_cast<const Bytef*>(data), len) != Z_OK) {
        vx_note_failure();  // there is room for the result
        return nullptr;
    }
    out.added(packed);
    out.shrink();
    out_len = packed;
    return out.release();
}
