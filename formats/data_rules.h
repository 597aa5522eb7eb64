// What the names and values of data files mean for the fields of a document.
#pragma once

#include <string>
#include <vector>

#include "formats/import/column_map.h"
#include "formats/import/csv.h"

class CPDFDocument;

// What becomes of columns and names that no field has.
enum class PDF_UNKNOWN_NAMES {
    REFUSE,  // they stay, so that plan_data refuses them
    IGNORE,
};

// How data files are read.
struct PDF_DATA_RULES {
    PDF_CSV_STYLE style;
    std::string list_separator = "|";  // between the values of a cell for a field that takes several; empty for nothing
    PDF_UNKNOWN_NAMES unknown = PDF_UNKNOWN_NAMES::REFUSE;
    CPDFColumnMap map;  // of columns to fields
};

// Makes of what a file says what the fields take: columns become fields, names that no field has go where they are
// ignored, cells become lists or what clears a field. Refuses what can't be converted.
CPDFStatus shape_data(CPDFDocument& document, const PDF_DATA_RULES& rules, CPDFFormData& data);

// The same without the map: its names are those of fields.
void fit_data(CPDFDocument& document, const PDF_DATA_RULES& rules, CPDFFormData& data);

// Whether a field has this name, or a value in the XFA data of a form that has nothing else; of many names, in their order,
// which reads these data once.
bool is_known_name(CPDFDocument& document, const std::string& name);
std::vector<bool> known_names(CPDFDocument& document, const CPDFFormData& data);

// Appends those of `constants`, which all rows have in common, for whose field `data` has no value.
void add_constants(CPDFDocument& document, const CPDFFormData& constants, CPDFFormData& data);
