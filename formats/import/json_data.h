// Form data as JSON.
#pragma once

#include <string_view>

#include "formats/import/form_data.h"

// Reads one object of names to strings, numbers, true, false or arrays of strings; null leaves a field alone and gives no
// entry. Numbers become texts with the digits that stand there. A name that comes twice and any other value are refused
// by name, malformed text by line and column. On failure `out` is empty.
CPDFStatus read_json_data(std::string_view text, CPDFFormData& out);
