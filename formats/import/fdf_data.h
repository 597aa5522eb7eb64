// Form data as FDF (ISO 32000-2, 12.7.8).
#pragma once

#include <string_view>

#include "formats/import/form_data.h"

// Reads the values of the fields: texts, names as their characters, numbers, lists of them as lists, texts in streams.
// Fields without a value give no entry, and neither do empty names, which some programs write for buttons that are not
// set. Options, flags and whatever else the file holds are passed over. A file that is cut off, damaged or encrypted is
// refused with the byte, a value of another kind with the name of its field. On failure `out` is empty.
CPDFStatus read_fdf_data(std::string_view bytes, CPDFFormData& out);
