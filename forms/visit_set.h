// The fields that one load has visited: a dictionary becomes one field only, however many arrays list it.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/growable.h"

class CPDFLoadWatch;

// A set of object numbers.
class CPDFNumberSet {
public:
    // Adds `num`; false when it is there already, and when memory runs out.
    bool add(uint32_t num)
    {
        const size_t word = num / 64;
        if (word >= m_bits.size() && !grow(word + 1 - m_bits.size()))
            return false;
        const uint64_t bit = uint64_t{1} << (num % 64);
        if (m_bits[word] & bit)
            return false;
        m_bits[word] |= bit;
        return true;
    }

    bool has(uint32_t num) const { return num / 64 < m_bits.size() && (m_bits[num / 64] >> (num % 64) & 1); }

private:
    bool grow(size_t words)
    {
        uint64_t* added = m_bits.room(words);
        if (!added)
            return false;
        words = m_bits.capacity() - m_bits.size();
        std::memset(added, 0, words * sizeof(uint64_t));
        m_bits.added(words);
        return true;
    }

    CPDFGrowable<uint64_t, 64, 2> m_bits;
};

// The object numbers of the fields and the depth of the walk that fills it.
class CPDFVisitSet : public CPDFNumberSet {
public:
    CPDFNumberSet bare;  // of these, widgets without a name and a parent: other fields may list them as theirs
    CPDFLoadWatch* watch = nullptr;  // borrowed; sees what is read
    int depth = 0;
    bool put_off_kids = false;  // top-level dictionaries that name a parent wait until the parents are loaded
};
