// A change of single entries of a dictionary in the object store.
#pragma once

#include <span>

class CPDFObj;

// The entry `key` becomes `value`; null, as a pointer or as a value, removes it. Both are borrowed.
struct PDF_ENTRY_CHANGE {
    const char* key;
    const CPDFObj* value;
};

// Changes of one dictionary, no key twice.
using PDF_ENTRY_CHANGES = std::span<const PDF_ENTRY_CHANGE>;

enum class [[nodiscard]] PDF_CHANGE_RESULT{
    STORED,
    NO_DICTIONARY,  // the object is missing or no dictionary: nothing is stored
    NO_MEMORY,      // nothing is stored
};
