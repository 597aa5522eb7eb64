// Full names in formats where the fields nest by their partial names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The place in such a file: the partial names that are open, outermost first.
class CPDFNamePath {
public:
    // Moves to the field of this full name: `closed` of the open parts end, innermost first, then `opened` begin. The
    // last part always begins anew, so that a value stands in front of the fields inside. Borrowed from `name`.
    struct STEP {
        size_t closed = 0;
        std::vector<std::string_view> opened;
    };
    STEP move_to(std::string_view name);

    // The parts that are open.
    size_t depth() const { return m_open.size(); }

private:
    std::vector<std::string> m_open;
};
