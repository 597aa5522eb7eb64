// Fuzz input as a row of choices, and how a target says what does not hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

[[noreturn]] inline void fault(const char* sentence)
{
    std::fprintf(stderr, "%s\n", sentence);
    std::abort();
}

inline void check(bool holds, const char* sentence)
{
    if (!holds)
        fault(sentence);
}

// Takes choices off the front of bytes that it borrows; what is used up gives zeros.
class FuzzBytes {
public:
    FuzzBytes(const uint8_t* data, size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

    bool done() const { return m_rest.empty(); }
    uint8_t byte()
    {
        const std::string_view one = take(1);
        return one.empty() ? 0 : static_cast<uint8_t>(one.front());
    }
    size_t below(size_t count) { return count ? byte() % count : 0; }
    uint32_t word() { return byte() | byte() << 8 | byte() << 16 | static_cast<uint32_t>(byte()) << 24; }
    std::string_view take(size_t size)
    {
        const std::string_view front = m_rest.substr(0, size);
        m_rest.remove_prefix(front.size());
        return front;
    }
    // Up to 255 bytes, their number first.
    std::string_view text() { return take(byte()); }
    std::string_view rest() { return take(m_rest.size()); }

private:
    std::string_view m_rest;
};
