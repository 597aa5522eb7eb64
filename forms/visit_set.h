// The fields that one load has visited: a dictionary becomes one field only, however many arrays list it.
#pragma once

#include <cstdint>
#include <vector>

// A set of object numbers and the depth of the walk that fills it.
class CPDFVisitSet {
public:
    // Adds `num`; false when it is there already.
    bool add(uint32_t num)
    {
        const size_t word = num / 64;
        if (word >= m_bits.size())
            m_bits.resize(word + 1 + word / 2);
        const uint64_t bit = uint64_t{1} << (num % 64);
        if (m_bits[word] & bit)
            return false;
        m_bits[word] |= bit;
        return true;
    }

    bool has(uint32_t num) const { return num / 64 < m_bits.size() && (m_bits[num / 64] >> (num % 64) & 1); }

    int depth = 0;
    bool put_off_kids = false;  // top-level dictionaries that name a parent wait until the parents are loaded

private:
    std::vector<uint64_t> m_bits;
};
