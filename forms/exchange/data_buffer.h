// The growing text that form data is written into.
#pragma once

#include <cstddef>

#include "core/growable.h"
#include "core/pdf_string.h"

// cvt_utourl or cvt_utoxml.
using FORM_ENCODER = int (*)(const wchar_t* w, char* out, int max);

constexpr int FORM_TEXT_CHARS = 127;  // of a name or a value, before it is encoded
constexpr int FORM_TEXT_MAX = 1022;   // bytes of an encoded one
constexpr int FORM_BUTTON_MAX = 62;   // bytes of the encoded export value of a button

// Bytes that grow in steps of 1024, above 4 KiB by a quarter, and are handed over as NUL-terminated text. Failure sticks:
// a writer appends freely, what comes after a failed allocation is dropped, and release then gives null.
class CPDFDataBuffer {
public:
    void append(const char* bytes, size_t size);
    // NUL-terminated text; null adds nothing.
    void append(const char* text);
    // A PDF text string, cut to FORM_TEXT_CHARS and encoded to at most `max` bytes (FORM_TEXT_MAX or less).
    void append(const PDF_String& text, FORM_ENCODER encode, int max = FORM_TEXT_MAX);

    // Drops what was appended after the first `size` bytes.
    void cut(size_t size) { m_bytes.cut(size); }

    const char* bytes() const { return m_bytes.data(); }  // not terminated; null while empty
    size_t size() const { return m_bytes.size(); }
    bool failed() const { return m_failed; }

    // Hands the text over to the caller, who frees it with VXFree, and leaves the buffer empty. `len` is the text's
    // length. An empty buffer gives an empty text. Null with `len` 0 after a failure, or when the length is no int.
    char* release(int& len);

private:
    CPDFGrowable<char, 1024> m_bytes;
    bool m_failed = false;
};
