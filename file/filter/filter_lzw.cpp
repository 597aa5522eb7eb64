// LZW data (ISO 32000-2, 7.4.4): codes of 9 to 12 bits, the high bit first. 0..255 stand for one byte, 256 clears the
// table, 257 ends the data, the others for an earlier sequence with the byte that followed it.
#include "file/filter/filters_internal.h"

namespace {

constexpr uint32_t CLEAR_TABLE = 256;
constexpr uint32_t END_OF_DATA = 257;
constexpr uint32_t FIRST_FREE = 258;
constexpr uint32_t TABLE_SIZE = 4096;
constexpr uint32_t FIRST_WIDTH = 9;
constexpr uint32_t LAST_WIDTH = 12;

// Every sequence has been decoded before, so it is a place in the output.
struct Sequence {
    size_t at;
    size_t length;
};

class BitReader {
public:
    BitReader(const uint8_t* data, size_t size) : m_at(data), m_end(data + size) {}

    bool read(uint32_t width, uint32_t& code)
    {
        while (m_count < width) {
            if (m_at == m_end)
                return false;
            m_bits = m_bits << 8 | *m_at++;
            m_count += 8;
        }
        m_count -= width;
        code = m_bits >> m_count & ((1u << width) - 1);
        return true;
    }

private:
    const uint8_t* m_at;  // borrowed from the stage
    const uint8_t* m_end;
    uint32_t m_bits = 0;  // the lower m_count bits are not read yet
    uint32_t m_count = 0;
};

class Table {
public:
    explicit Table(uint32_t early) : m_early(early) {}

    uint32_t width() const { return m_width; }

    void clear()
    {
        m_next = FIRST_FREE;
        m_width = FIRST_WIDTH;
        m_last = {0, 0};
    }

    // The sequence of `code`, about to be written at `at`; of length 0 for a code that has none. The sequence before,
    // with the byte that this one starts with, becomes the next entry.
    Sequence next(uint32_t code, size_t at)
    {
        if (m_last.length > 0 && m_next < TABLE_SIZE) {
            m_entries[m_next++] = {m_last.at, m_last.length + 1};
            if (m_next + m_early >= 1u << m_width && m_width < LAST_WIDTH)
                ++m_width;
        }
        Sequence sequence = {at, 1};
        if (code >= FIRST_FREE)
            sequence = code < m_next ? m_entries[code] : Sequence{0, 0};
        m_last = {at, sequence.length};
        return sequence;
    }

private:
    Sequence m_entries[TABLE_SIZE];
    Sequence m_last = {0, 0};
    uint32_t m_early;
    uint32_t m_next = FIRST_FREE;
    uint32_t m_width = FIRST_WIDTH;
};

}  // namespace

bool decode_lzw(const CPDFFilterInput& in, CPDFBytes& out)
{
    BitReader bits(in.data, in.size);
    Table table(in.parms.early_change != 0);
    uint32_t code = 0;
    while (out.size() < in.limit && bits.read(table.width(), code) && code != END_OF_DATA) {
        if (code == CLEAR_TABLE) {
            table.clear();
            continue;
        }
        const Sequence sequence = table.next(code, out.size());
        if (sequence.length == 0)
            break;
        uint8_t* to = out.room(sequence.length);
        if (!to)
            return false;
        // The newest entry ends with the byte that its own start gives, hence byte by byte.
        const uint8_t* from = out.data() + sequence.at;
        if (code < CLEAR_TABLE)
            *to = static_cast<uint8_t>(code);
        for (size_t i = 0; i < sequence.length && code > CLEAR_TABLE; ++i)
            to[i] = from[i];
        out.added(sequence.length);
    }
    return true;
}
