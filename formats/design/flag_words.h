// The flags of fields that people set, by name.
#pragma once

#include <cstdint>
#include <span>
#include <string>

struct PDF_FLAG_WORD {
    uint32_t flag;     // PDF_FIELD_FLAG
    const char* help;  // what it is, for people

    std::string name() const;  // the word for the flag, such as "read-only"
};

std::span<const PDF_FLAG_WORD> settable_flags();
