// What must hold for any bytes that are read as form data.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "formats/import/form_data.h"

// Reads the bytes and ends the program when a refusal has no sentence or leaves entries.
template <typename Read>
void check_data(const uint8_t* data, size_t size, Read&& read)
{
    CPDFFormData entries;
    const CPDFStatus status = read(std::string_view(reinterpret_cast<const char*>(data), size), entries);
    if (status.ok() || (entries.empty() && !status.text.empty()))
        return;
    std::fprintf(stderr, "the refusal has no sentence, or leaves entries\n");
    std::abort();
}
