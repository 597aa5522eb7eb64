// A reader over the decoded data of one stream.
#pragma once

#include <cstdint>

#include "core/alloc.h"

// Made by CPDFXRefTable::make_stream; the caller owns it and deletes it. It must not outlive the object store. The order of
// its virtual operations stays.
class CPDFStream : public VXNew<CPDFStream> {
public:
    CPDFStream() = default;
    virtual ~CPDFStream();
    CPDFStream(const CPDFStream&) = delete;
    CPDFStream& operator=(const CPDFStream&) = delete;

    // Starts again at the first byte.
    virtual void rewind() = 0;

    // Whether every byte has been read.
    virtual bool at_end() = 0;

    // Copies up to `size` further bytes of decoded data into `buf` and returns their number, which is less than
    // `size` only at the end.
    virtual int read_data(void* buf, int size) = 0;

    // Reads the whole stream into a new VXAlloc buffer, terminated by a 0 byte that `len` does not count; the caller
    // owns it. `len` in: a size estimate or 0; out: the bytes read. Reading stops with a prefix once the capacity
    // would exceed `max`. Returns null, with `len` 0, when memory runs out.
    unsigned char* buffer_load(int max, int& len);

    int32_t m_data_len = 0;  // length of the data, as far as known before decoding: the first size estimate
};
