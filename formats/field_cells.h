// What the cells of a table mean for the fields that they are for.
#pragma once

#include <string>

#include "formats/import/form_data.h"

class CPDFDocument;
class CPDFField;

// Whether the field takes several values at once.
bool takes_several(const CPDFField& field);

// Splits cells at `separator`, unless that is empty, for fields that take several values: at each of its places, but for a cell that
// is one option as a whole. Makes empty cells what clears their field.
void fit_cells(CPDFDocument& document, const std::string& separator, CPDFFormData& data);
