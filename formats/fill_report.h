// The report of a fill: one line of JSON for each name.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "formats/apply_data.h"

// Appends {"name", "result", "why", "value"} for each item, "row" before them unless it is 0. "result" is "set",
// "coerced" when the value was understood as something else than it said, "kept" when the field has it already, or "refused",
// which "why" explains; for each field in `calculated` a line with "calculated" follows. "value" is what the field has now that
// the plans are carried out, or the value refused.
void append_report(std::string& out, CPDFDocument& document, const std::vector<PDF_DATA_ITEM>& items,
                   const std::vector<CPDFField*>& calculated, size_t row = 0);
