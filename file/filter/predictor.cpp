// Predictors of Flate and LZW data (ISO 32000-2, 7.4.4.4). PNG: each row starts with a byte that names how it was
// predicted, so decoded data is shorter and is written over what has been read. TIFF: every component was predicted
// by the one a pixel to the left.
#include "file/filter/filters_internal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int32_t TIFF_PREDICTOR = 2;
constexpr int32_t FIRST_PNG_PREDICTOR = 10;
constexpr int32_t LAST_PNG_PREDICTOR = 15;

// Kinds of rows.
constexpr uint8_t PNG_NONE = 0;
constexpr uint8_t PNG_SUB = 1;
constexpr uint8_t PNG_UP = 2;
constexpr uint8_t PNG_AVERAGE = 3;
constexpr uint8_t PNG_PAETH = 4;

bool is_bit_depth(int32_t bits)
{
    return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16;
}

// Bytes of one pixel, rounded up, at most `max`.
size_t pixel_bytes(const CPDFFilterParms& parms, size_t max)
{
    const uint64_t bits = static_cast<uint64_t>(parms.colors) * static_cast<uint64_t>(parms.bits);
    return static_cast<size_t>(std::min<uint64_t>((bits + 7) / 8, max));
}

// Bytes of one row, at most `max`, where all of the data is one incomplete row.
size_t row_bytes(const CPDFFilterParms& parms, size_t max)
{
    const uint64_t bits = static_cast<uint64_t>(parms.colors) * static_cast<uint64_t>(parms.bits);
    const auto columns = static_cast<uint64_t>(parms.columns);
    if (columns > uint64_t{8} * max / bits)
        return max;
    return static_cast<size_t>(std::min<uint64_t>((columns * bits + 7) / 8, max));
}

uint8_t paeth(int left, int up, int corner)
{
    const int guess = left + up - corner;
    const int to_left = std::abs(guess - left);
    const int to_up = std::abs(guess - up);
    const int to_corner = std::abs(guess - corner);
    if (to_left <= to_up && to_left <= to_corner)
        return static_cast<uint8_t>(left);
    return static_cast<uint8_t>(to_up <= to_corner ? up : corner);
}

// The kind of a first row once the row above, all zeros, is left out.
uint8_t first_row_kind(uint8_t kind)
{
    if (kind == PNG_UP)
        return PNG_NONE;
    return kind == PNG_PAETH ? PNG_SUB : kind;
}

// `out` lies before `in`, so every byte is read before it is written over. `up` is null in the first row.
void undo_png_row(uint8_t kind, uint8_t* out, const uint8_t* in, const uint8_t* up, size_t size, size_t pixel)
{
    if (kind == PNG_UP) {
        for (size_t i = 0; i < size; ++i)
            out[i] = static_cast<uint8_t>(in[i] + up[i]);
        return;
    }
    if (kind != PNG_SUB && kind != PNG_AVERAGE && kind != PNG_PAETH) {
        std::memmove(out, in, size);
        return;
    }
    const size_t head = std::min(pixel, size);
    for (size_t i = 0; i < head; ++i) {
        const int above = up ? up[i] : 0;
        const int guess = kind == PNG_SUB ? 0 : kind == PNG_AVERAGE ? above / 2 : above;
        out[i] = static_cast<uint8_t>(in[i] + guess);
    }
    if (kind == PNG_SUB) {
        for (size_t i = head; i < size; ++i)
            out[i] = static_cast<uint8_t>(in[i] + out[i - pixel]);
    } else if (kind == PNG_AVERAGE) {
        for (size_t i = head; i < size; ++i)
            out[i] = static_cast<uint8_t>(in[i] + (out[i - pixel] + (up ? up[i] : 0)) / 2);
    } else {
        for (size_t i = head; i < size; ++i)
            out[i] = static_cast<uint8_t>(in[i] + paeth(out[i - pixel], up[i], up[i - pixel]));
    }
}

// Eight bytes added pairwise, without carry from one into the next.
uint64_t add_bytes(uint64_t a, uint64_t b)
{
    constexpr uint64_t LOW_BITS = 0x7F7F7F7F7F7F7F7F;
    return ((a & LOW_BITS) + (b & LOW_BITS)) ^ ((a ^ b) & ~LOW_BITS);
}

// Cross-reference streams: rows of at most 8 bytes, each the difference from the row above. Row `first` and those behind
// it, as long as they are whole and of that kind; returns the row behind the last one done. Reads and writes 8 bytes at a
// time, so `first` is at least 8: what a write spoils behind its row has been read by then.
size_t undo_short_rows(uint8_t* data, size_t size, size_t row, size_t first)
{
    size_t r = first;
    uint64_t above = 0;
    std::memcpy(&above, data + (r - 1) * row, sizeof(above));
    uint8_t* out = data + r * row;
    const uint8_t* in = data + r * (row + 1);
    const uint8_t* end = data + size;
    for (; static_cast<size_t>(end - in) > sizeof(above) && *in == PNG_UP; ++r) {
        uint64_t difference = 0;
        std::memcpy(&difference, in + 1, sizeof(difference));
        above = add_bytes(above, difference);
        std::memcpy(out, &above, sizeof(above));
        in += row + 1;
        out += row;
    }
    return r;
}

void undo_png(const CPDFFilterParms& parms, CPDFBytes& bytes)
{
    uint8_t* data = bytes.data();
    const size_t size = bytes.size();
    const size_t row = row_bytes(parms, size);
    const size_t pixel = pixel_bytes(parms, size);
    size_t r = 0;
    while (r * (row + 1) < size) {
        if (r >= sizeof(uint64_t) && row <= sizeof(uint64_t)) {
            r = undo_short_rows(data, size, row, r);
            if (r * (row + 1) >= size)
                break;
        }
        uint8_t* out = data + r * row;
        const uint8_t* in = data + r * (row + 1);
        const uint8_t kind = r == 0 ? first_row_kind(*in) : *in;
        const size_t left = size - r * (row + 1) - 1;
        undo_png_row(kind, out, in + 1, r == 0 ? nullptr : out - row, std::min(row, left), pixel);
        ++r;
    }
    bytes.cut(size - r);
}

void undo_tiff_bits(uint8_t* row, size_t samples, size_t colors, size_t bits)
{
    const unsigned mask = (1u << bits) - 1;
    const auto shift_of = [bits](size_t sample) { return static_cast<unsigned>(8 - bits - sample * bits % 8); };
    for (size_t i = colors; i < samples; ++i) {
        uint8_t& byte = row[i * bits / 8];
        const unsigned left = row[(i - colors) * bits / 8] >> shift_of(i - colors);
        const unsigned sum = ((byte >> shift_of(i)) + left) & mask;
        byte = static_cast<uint8_t>((byte & ~(mask << shift_of(i))) | sum << shift_of(i));
    }
}

void undo_tiff_row(const CPDFFilterParms& parms, uint8_t* row, size_t size)
{
    const auto colors = static_cast<size_t>(parms.colors);
    if (parms.bits == 8) {
        for (size_t i = colors; i < size; ++i)
            row[i] = static_cast<uint8_t>(row[i] + row[i - colors]);
    } else if (parms.bits == 16) {
        for (size_t i = 2 * colors; i + 1 < size; i += 2) {
            const uint8_t* left = row + i - 2 * colors;
            const unsigned sum = (row[i] << 8 | row[i + 1]) + (left[0] << 8 | left[1]);
            row[i] = static_cast<uint8_t>(sum >> 8);
            row[i + 1] = static_cast<uint8_t>(sum);
        }
    } else {
        const auto bits = static_cast<size_t>(parms.bits);
        const size_t samples = std::min(size * 8 / bits, colors * static_cast<size_t>(parms.columns));
        undo_tiff_bits(row, samples, colors, bits);
    }
}

}  // namespace

void undo_predictor(const CPDFFilterParms& parms, CPDFBytes& bytes)
{
    if (bytes.size() == 0)
        return;
    CPDFFilterParms used = parms;
    if (!is_bit_depth(used.bits))
        used.bits = CPDFFilterParms().bits;
    if (used.predictor >= FIRST_PNG_PREDICTOR && used.predictor <= LAST_PNG_PREDICTOR)
        undo_png(used, bytes);
    if (used.predictor != TIFF_PREDICTOR)
        return;
    const size_t row = row_bytes(used, bytes.size());
    for (size_t at = 0; at < bytes.size(); at += row)
        undo_tiff_row(used, bytes.data() + at, std::min(row, bytes.size() - at));
}
