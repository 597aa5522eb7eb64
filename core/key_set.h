// A short list of dictionary keys that a reader is interested in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// The keys are borrowed literals, at most 16. Reading an object with a key set skips every other top-level entry of its
// dictionary, so that nothing is built that nobody looks at.
class CPDFKeySet {
public:
    template <size_t N>
    explicit constexpr CPDFKeySet(const char* const (&keys)[N])
    {
        static_assert(N <= MAX_KEYS);
        for (size_t i = 0; i < N; ++i) {
            m_keys[i] = keys[i];
            uint8_t& first = m_first[slot_of(keys[i], m_keys[i].size())];
            m_next[i] = first;
            first = static_cast<uint8_t>(i + 1);
        }
    }

    bool contains(const char* key, size_t len) const
    {
        if (len == 0)
            return false;
        for (size_t at = m_first[slot_of(key, len)]; at; at = m_next[at - 1]) {
            if (m_keys[at - 1].size() == len && std::memcmp(m_keys[at - 1].data(), key, len) == 0)
                return true;
        }
        return false;
    }

private:
    static constexpr size_t MAX_KEYS = 16;
    static constexpr size_t SLOTS = 64;

    // First character and length tell almost all keys of a dictionary apart.
    static constexpr size_t slot_of(const char* key, size_t len)
    {
        return (static_cast<unsigned char>(key[0]) * 7u + len * 13u) % SLOTS;
    }

    std::string_view m_keys[MAX_KEYS] = {};
    uint8_t m_first[SLOTS] = {};    // 1 + the first key of each slot, 0 for none
    uint8_t m_next[MAX_KEYS] = {};  // the same for the key that follows in the slot
};
