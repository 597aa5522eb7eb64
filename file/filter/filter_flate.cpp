// Flate data (ISO 32000-2, 7.4.4): two bytes of header, Deflate data (RFC 1951), four bytes of checksum. Neither header
// nor checksum decides: damaged and careless files have wrong ones around good data.
#include "file/filter/filters_internal.h"

#include <algorithm>
#include <climits>

#include <zlib.h>
#ifdef FORMWORK_LIBDEFLATE
#include <libdeflate.h>
#endif

namespace {

constexpr size_t HEADER_SIZE = 2;
constexpr size_t FIRST_STEP = 4096;

bool is_header(const uint8_t* data, size_t size)
{
    return size >= HEADER_SIZE && (data[0] & 0x0F) == Z_DEFLATED && data[0] >> 4 <= 7 &&
           (data[0] << 8 | data[1]) % 31 == 0 && (data[1] & 0x20) == 0;
}

#ifdef FORMWORK_LIBDEFLATE

// Twice as fast as zlib, but all or nothing and without growing. Few streams of objects shrink to less than a sixteenth;
// room that stays unused costs nothing.
constexpr size_t FIRST_GUESS = 16;
constexpr size_t LAST_GUESS = 128;
constexpr size_t LARGEST_GUESS = size_t{64} << 20;

// Decodes sound data whole. False, with `out` empty, for anything else and for data that outgrows the guess.
bool decode_at_once(const uint8_t* data, size_t size, size_t limit, CPDFBytes& out)
{
    libdeflate_decompressor* decompressor = libdeflate_alloc_decompressor();
    libdeflate_result result = decompressor ? LIBDEFLATE_INSUFFICIENT_SPACE : LIBDEFLATE_BAD_DATA;
    for (size_t ratio = FIRST_GUESS; ratio <= LAST_GUESS && result == LIBDEFLATE_INSUFFICIENT_SPACE; ratio *= 8) {
        if (size > LARGEST_GUESS / ratio)
            break;
        out.clear();
        const size_t room = std::min(limit, size * ratio + FIRST_STEP);
        uint8_t* to = out.room(room);
        if (!to)
            break;
        size_t used = 0;
        size_t made = 0;
        result = libdeflate_deflate_decompress_ex(decompressor, data, size, to, room, &used, &made);
        if (result == LIBDEFLATE_SUCCESS)
            out.added(made);
    }
    if (decompressor)
        libdeflate_free_decompressor(decompressor);
    if (result != LIBDEFLATE_SUCCESS)
        out.clear();
    return result == LIBDEFLATE_SUCCESS;
}

#endif

// Decodes as far as the data goes. `whole` tells whether its end was found. False when memory runs out.
bool decode_piecewise(const uint8_t* data, size_t size, size_t limit, CPDFBytes& out, bool& whole)
{
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
        vx_note_failure();
        return false;
    }
    stream.next_in = const_cast<Bytef*>(data);
    stream.avail_in = static_cast<uInt>(std::min<size_t>(size, UINT_MAX));
    int result = Z_OK;
    size_t step = FIRST_STEP + std::min(size, limit / 4) * 4;
    while (result == Z_OK && stream.avail_out == 0 && out.size() < limit) {
        step = std::min(step, limit - out.size());
        if (!out.reserve(out.size() + step)) {
            result = Z_MEM_ERROR;
            break;
        }
        stream.next_out = out.room(step);
        stream.avail_out = static_cast<uInt>(step);
        result = inflate(&stream, Z_NO_FLUSH);
        out.added(step - stream.avail_out);
        step *= 2;
    }
    inflateEnd(&stream);
    if (result == Z_MEM_ERROR)
        vx_note_failure();
    whole = result == Z_STREAM_END;
    return result != Z_MEM_ERROR;
}

bool decode_deflate(const uint8_t* data, size_t size, size_t limit, CPDFBytes& out, bool& whole)
{
#ifdef FORMWORK_LIBDEFLATE
    whole = decode_at_once(data, size, limit, out);
    if (whole)
        return true;
#endif
    return decode_piecewise(data, size, limit, out, whole);
}

// For data without a proper header: with whatever stands in its place, and from the first byte. The reading that
// reaches its end counts, else the longer one.
bool decode_headless(const CPDFFilterInput& in, CPDFBytes& out)
{
    bool whole = false;
    if (!decode_deflate(in.data, in.size, in.limit, out, whole))
        return false;
    if (whole || in.size <= HEADER_SIZE)
        return true;
    CPDFBytes other;
    if (!decode_deflate(in.data + HEADER_SIZE, in.size - HEADER_SIZE, in.limit, other, whole))
        return false;
    if (whole || other.size() > out.size())
        out.swap(other);
    return true;
}

}  // namespace

bool decode_flate(const CPDFFilterInput& in, CPDFBytes& out)
{
    // Some writers leave more than one end of line before the data.
    const uint8_t* data = in.data;
    size_t size = in.size;
    while (size > 0 && (*data == '\r' || *data == '\n')) {
        ++data;
        --size;
    }
    if (!is_header(data, size))
        return decode_headless(in, out);
    bool whole = false;
    return decode_deflate(data + HEADER_SIZE, size - HEADER_SIZE, in.limit, out, whole);
}
