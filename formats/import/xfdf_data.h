// Form data as XFDF (ISO 19444-1).
#pragma once

#include <string_view>

#include "formats/import/form_data.h"

// Reads the fields with their values: a text, or a list where a field has several "value" elements. Only the form's data
// count; annotations and whatever else the file holds are passed over, rich text where there is the plain text, too.
// What is no XML in UTF-8, a document type, and text out of place are refused with the line. On failure `out` is empty.
CPDFStatus read_xfdf_data(std::string_view text, CPDFFormData& out);
