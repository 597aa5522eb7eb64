// The values that the command line gives beside the rows of a batch, or alone.
#pragma once

#include "formats/import/form_data.h"

class CPDFDocument;
class DataRules;
struct FILL_ARGUMENTS;

// Appends the values of NAME=VALUE. Says so where a name is understood as that of another field.
void add_assignments(CPDFDocument& document, const FILL_ARGUMENTS& arguments, CPDFFormData& data);

// Reads what all rows of a batch have in common: --data, then NAME=VALUE. False after a complaint, also about names that
// no field has.
bool read_constants(CPDFDocument& document, const FILL_ARGUMENTS& arguments, const DataRules& rules, CPDFFormData& out);

// Appends those of `constants` for whose field `data` has no value.
void add_constants(CPDFDocument& document, const CPDFFormData& constants, CPDFFormData& data);
