// The PDF string record: raw bytes with a length (ISO 32000-2, 7.9.2).
#pragma once

#include <cstddef>
#include <cstdint>

// `len` bytes in `buf`, which holds one byte more, a terminating 0. An empty string has `len` 0 and either a null
// buffer or a one-byte buffer. A plain record: whoever holds it releases it.
struct PDF_String {
    int32_t len;
    unsigned char* buf;  // from VXAlloc

    // Sets the string to the big-endian UTF-16 encoding of `text`, after the bytes FE FF when `with_bom` is not 0.
    // A character above U+FFFF becomes a surrogate pair. Null text gives an empty text. What the string held before
    // is not released; when memory runs out the string is left empty.
    void init(const wchar_t* text, int with_bom);

    // Sets the string to a copy of `size` bytes. Null bytes, a negative size or a failed allocation leave it empty
    // with a null buffer. What the string held before is not released. Returns whether bytes were copied.
    bool assign(const void* bytes, int32_t size);

    // Takes the bytes of `src`, which is left empty. What the string held before is not released.
    void take(PDF_String& src);

    // Releases the bytes and leaves the string empty.
    void release();

    // Whether both hold the same bytes.
    bool equals(const PDF_String& other) const;
    bool equals(const char* text) const;
};
