// The values that the command line gives beside the rows of a batch, or alone.
#pragma once

#include "formats/import/form_data.h"

class CPDFDocument;
struct FILL_ARGUMENTS;
struct PDF_DATA_RULES;

// Appends the values of NAME=VALUE. Says so where a name is understood as that of another field.
void add_assignments(CPDFDocument& document, const FILL_ARGUMENTS& arguments, CPDFFormData& data);

// Reads what all rows of a batch have in common: --data, as the rules say, then NAME=VALUE. The map is for the names of
// columns: those of a CSV file. False after a complaint, also about names that
// no field has.
bool read_constants(CPDFDocument& document, const FILL_ARGUMENTS& arguments, const PDF_DATA_RULES& rules,
                    CPDFFormData& out);
