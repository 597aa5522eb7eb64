// A short list of dictionary keys that a reader is interested in.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// At most 32 keys, borrowed literals: `constexpr CPDFKeySet KEYS{"Kids", "T"};`. Reading an object with a key set skips
// every other top-level entry of its dictionary, so that nothing is built that nobody looks at.
class CPDFKeySet {
public:
    template <std::convertible_to<const char*>... Keys>
    explicit constexpr CPDFKeySet(const Keys&... keys)
    {
        static_assert(sizeof...(keys) > 0 && sizeof...(keys) <= MAX_KEYS);
        uint8_t count = 0;
        (add(keys, count), ...);
    }

    // The same from an array of keys.
    template <size_t N>
    explicit constexpr CPDFKeySet(const char* const (&keys)[N])
    {
        static_assert(N <= MAX_KEYS);
        uint8_t count = 0;
        for (const char* key : keys)
            add(key, count);
    }

    // The keys of `base` and more.
    template <std::convertible_to<const char*>... Keys>
    explicit constexpr CPDFKeySet(const CPDFKeySet& base, const Keys&... keys) : CPDFKeySet(base)
    {
        uint8_t count = 0;
        while (!m_keys[count].empty())
            ++count;
        (add(keys, count), ...);
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
    static constexpr size_t MAX_KEYS = 32;
    static constexpr size_t SLOTS = 64;

    constexpr void add(const char* key, uint8_t& count)
    {
        m_keys[count] = key;
        uint8_t& first = m_first[slot_of(key, m_keys[count].size())];
        m_next[count] = first;
        first = ++count;
    }

    // First character and length tell almost all keys of a dictionary apart.
    static constexpr size_t slot_of(const char* key, size_t len)
    {
        return (static_cast<unsigned char>(key[0]) * 7u + len * 13u) % SLOTS;
    }

    std::string_view m_keys[MAX_KEYS] = {};
    uint8_t m_first[SLOTS] = {};    // 1 + the first key of each slot, 0 for none
    uint8_t m_next[MAX_KEYS] = {};  // the same for the key that follows in the slot
};
