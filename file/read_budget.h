// How much work the reading of one file may take: hostile files let a few bytes ask for a lot of it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/limits.h"

// Bytes that may still be parsed, and bytes that may still be decoded, before objects read as absent. Neither depends on what
// was read before, so a file that is read less after a change does not have less for it.
class CPDFReadBudget {
public:
    explicit CPDFReadBudget(size_t file_size) : m_size(file_size) { renew(); }

    // Allows as many bytes again as at the start.
    void renew()
    {
        m_parse = LIMIT_PARSE_WORK * (m_updated ? 2 : 1) + LIMIT_PARSE_WORK_PER_BYTE * m_size;
        m_decode = LIMIT_DECODE_WORK + LIMIT_DECODE_WORK_PER_BYTE * m_size;
        spend_decoding(m_kept);
    }

    bool may_parse() const { return m_parse > 0; }
    bool may_decode() const { return m_decode > 0; }

    // Whether it ended: what was read since then may be absent without being so.
    bool exhausted() const { return !may_parse() || !may_decode(); }

    // Counts bytes that were parsed, or decoded; false when they were more than was left.
    bool spend(size_t bytes)
    {
        const bool enough = bytes <= m_parse;
        m_parse = enough ? m_parse - bytes : 0;
        return enough;
    }
    void spend_decoding(uint64_t bytes) { m_decode -= std::min(m_decode, bytes); }

    // Bytes that may still be decoded; the decoder takes off what it gives.
    uint64_t& decoding() { return m_decode; }

    // So many decoded bytes are kept: they are not allowed again.
    void set_kept(uint64_t bytes) { m_kept = bytes; }

    // The file has an incremental update.
    void set_updated()
    {
        m_updated = true;
        renew();
    }

private:
    size_t m_size;
    uint64_t m_parse = 0;
    uint64_t m_decode = 0;
    uint64_t m_kept = 0;
    bool m_updated = false;
};

// The budget of one operation: whole when it begins, and whole again for what comes after it.
class CPDFReadAllowance {
public:
    explicit CPDFReadAllowance(CPDFReadBudget& budget) : m_budget(budget) { m_budget.renew(); }
    ~CPDFReadAllowance() { m_budget.renew(); }
    CPDFReadAllowance(const CPDFReadAllowance&) = delete;
    CPDFReadAllowance& operator=(const CPDFReadAllowance&) = delete;

    // Whether the operation asked for more than it may.
    bool used_up() const { return m_budget.exhausted(); }

private:
    CPDFReadBudget& m_budget;  // borrowed from the reader
};
