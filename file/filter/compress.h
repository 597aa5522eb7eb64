// The Flate encoder (ISO 32000-2, 7.4.4).
#pragma once

#include <cstddef>

// Compresses `len` bytes into a new VXAlloc buffer of `out_len` bytes that the caller owns. Null, with `out_len` 0, when
// memory runs out.
unsigned char* flate_compress(const void* data, size_t len, size_t& out_len);
