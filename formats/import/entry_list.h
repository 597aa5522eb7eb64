// The entries that a file with nested names yields.
#pragma once

#include <string>
#include <string_view>

#include "core/limits.h"
#include "formats/import/form_data.h"

// Takes entries while they stay in proportion to a file of `size` bytes. `out` is borrowed.
class CPDFEntryList {
public:
    CPDFEntryList(CPDFFormData& out, size_t size);

    // The full name of a field with the partial name `part` under the one named `above`; empty when it stands at the top.
    // False when it is longer than full names are.
    static bool join(std::string_view above, bool is_top, std::string_view part, std::string& name);

    // False when the entries take more than the limits allow.
    bool add(const std::string& name, CPDFValue value, PDF_WORDS words);

private:
    CPDFFormData& m_out;
    size_t m_room;                        // bytes that may still be taken
    size_t m_values = LIMIT_DATA_VALUES;  // the same for values
};
