// Stream filters (ISO 32000-2, 7.4): from the stored bytes of a stream to its decoded data.
#pragma once

#include <cstddef>
#include <cstdint>

class CPDFDictionary;
class CPDFStream;
class CPDFXRefTable;

// Bytes in one VXAlloc block that grows as they come. Moved, never copied. When memory runs out a call says so and
// leaves the bytes as they are.
class CPDFBytes {
public:
    CPDFBytes() = default;
    ~CPDFBytes() { clear(); }
    CPDFBytes(CPDFBytes&& other) noexcept { swap(other); }
    CPDFBytes& operator=(CPDFBytes&& other) noexcept
    {
        swap(other);
        return *this;
    }
    CPDFBytes(const CPDFBytes&) = delete;
    CPDFBytes& operator=(const CPDFBytes&) = delete;

    uint8_t* data() { return m_data; }
    const uint8_t* data() const { return m_data; }
    size_t size() const { return m_size; }
    size_t capacity() const { return m_capacity; }

    // Room for `capacity` bytes in all, not more.
    bool reserve(size_t capacity);

    // Room for `more` bytes behind the last one, uninitialised: write there, then call added. The capacity at least
    // doubles when it grows. Null when memory runs out. Borrowed: ends with the next call that is not const.
    uint8_t* room(size_t more) { return more <= m_capacity - m_size || grow(more) ? m_data + m_size : nullptr; }

    // `count` bytes, no more than the room asked for, have been written behind the last one.
    void added(size_t count) { m_size += count; }

    bool append(const void* bytes, size_t count);

    // Drops what lies behind the first `size` bytes; does nothing when there are fewer.
    void cut(size_t size) { m_size = size < m_size ? size : m_size; }

    // Gives back room that is not used.
    void shrink();

    // Frees everything.
    void clear();

    // The block, which the caller owns (VXFree); null when nothing was ever added. Leaves this empty.
    uint8_t* release();

    void swap(CPDFBytes& other) noexcept;

private:
    bool grow(size_t more);

    uint8_t* m_data = nullptr;  // owned, from VXAlloc
    size_t m_size = 0;
    size_t m_capacity = 0;
};

// Decodes `size` bytes of stream data into `out` as "Filter" and "DecodeParms" of the stream dictionary ask; without a
// filter they are copied. The abbreviated names of inline images are known too. References in the two entries are
// followed through `xref`; with null they count as damage.
// Truncated or corrupt data gives what could be decoded up to there. No stage gives more than LIMIT_DECODED_STREAM bytes,
// nor more than LIMIT_DECODE_RATIO times `size` plus LIMIT_DECODE_SLACK: the data ends there.
// False, with `out` empty, for a filter that is not known here (image codecs, encryption), more than LIMIT_FILTERS of
// them, or when memory runs out.
// `work`, when not null, is set to the bytes that all stages gave together.
bool decode_stream(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size, CPDFBytes& out,
                   uint64_t* work = nullptr);

// A reader that takes `bytes`; the caller owns it.
CPDFStream* make_decoded_stream(CPDFBytes&& bytes);
