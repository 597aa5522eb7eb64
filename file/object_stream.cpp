#include "file/object_stream.h"

#include <algorithm>
#include <numeric>

#include "core/limits.h"
#include "file/syntax/lexer.h"

CPDFObjectStream::CPDFObjectStream(CPDFBytes bytes, int32_t count, int32_t first) : m_bytes(std::move(bytes))
{
    const uint8_t* begin = m_bytes.data();
    const auto body = static_cast<size_t>(std::max(first, 0));
    CPDFLexer lexer(begin, begin + m_bytes.size());
    count = std::min(count, LIMIT_STREAM_OBJECTS);
    for (int32_t i = 0; i < count; ++i) {
        uint32_t num = 0;
        uint32_t offset = 0;
        lexer.skip_space();
        if (!lexer.read_u32(num))
            break;
        lexer.skip_space();
        if (!lexer.read_u32(offset))
            break;
        const size_t at = body + offset;
        m_places.push_back({num, static_cast<uint32_t>(std::min(at, m_bytes.size()))});
    }
}

size_t CPDFObjectStream::place_of(uint32_t num) const
{
    // Right indices never get here, so the order is made on the first need.
    if (m_by_num.empty()) {
        m_by_num.resize(m_places.size());
        std::iota(m_by_num.begin(), m_by_num.end(), 0u);
        std::sort(m_by_num.begin(), m_by_num.end(), [this](uint32_t a, uint32_t b) {
            return m_places[a].num != m_places[b].num ? m_places[a].num < m_places[b].num : a < b;
        });
    }
    const auto below = [this](uint32_t place, uint32_t wanted) { return m_places[place].num < wanted; };
    const auto found = std::lower_bound(m_by_num.begin(), m_by_num.end(), num, below);
    return found != m_by_num.end() && m_places[*found].num == num ? *found : m_places.size();
}

bool CPDFObjectStream::find(uint32_t num, uint32_t index, const uint8_t*& begin, const uint8_t*& end) const
{
    size_t at = index;
    if (at >= m_places.size() || m_places[at].num != num)
        at = place_of(num);
    if (at == m_places.size())
        return false;
    begin = m_bytes.data() + m_places[at].offset;
    end = m_bytes.data() + m_bytes.size();
    if (at + 1 < m_places.size() && m_places[at + 1].offset > m_places[at].offset)
        end = m_bytes.data() + m_places[at + 1].offset;
    return true;
}

const CPDFObjectStream* CPDFObjectStreamCache::find(uint32_t num)
{
    if (m_last && m_last_num == num)
        return m_last;
    const auto slot = m_slots.find(num);
    if (slot == m_slots.end())
        return nullptr;
    slot->second.last_use = ++m_clock;
    m_last_num = num;
    m_last = slot->second.stream.get();
    return m_last;
}

const CPDFObjectStream* CPDFObjectStreamCache::add(uint32_t num, std::unique_ptr<CPDFObjectStream> stream)
{
    make_room(stream->footprint());
    m_held += stream->footprint();
    m_last_num = num;
    m_last = stream.get();
    m_slots[num] = {std::move(stream), ++m_clock};
    return m_last;
}

void CPDFObjectStreamCache::make_room(size_t size)
{
    if (m_last)
        m_slots[m_last_num].last_use = ++m_clock;  // finding it again did not count
    m_last = nullptr;
    while (!m_slots.empty() && m_held + size > m_room) {
        const auto older = [](const auto& a, const auto& b) { return a.second.last_use < b.second.last_use; };
        const auto oldest = std::min_element(m_slots.begin(), m_slots.end(), older);
        m_held -= oldest->second.stream->footprint();
        m_slots.erase(oldest);
    }
}
