// Writes the values of a form as a data file that `read_form_data` takes back.
#pragma once

#include <string>
#include <vector>

#include "file/status.h"

class CPDFDataWriter;
class CPDFDocument;
class CPDFField;

enum class PDF_DATA_FORMAT {
    JSON,
    FDF,   // ISO 32000-2, 12.7.8
    XFDF,  // ISO 19444-1
    CSV,   // RFC 4180
};

// Which texts are exported.
enum class PDF_EXPORT_TEXTS {
    VALUES,  // what an import takes back
    SHOWN,   // what CPDFDocument::shown_text says, where it says anything
};

// Makes `out` a file with the values of `fields`, each with all the fields under it, in that order; of the whole form,
// in tree order, when it is null. Text fields, check boxes, radio groups and choices with a name of their own are
// exported, the first of each full name; one without a value is left out, so that an import leaves it alone.
//
// A choice gives the export values of its options, as a list when there are several; where "V" has the text shown, that
// stands for the export value. In CSV every such field has a column, an empty cell where it has no value or an empty
// one, and several values joined by '|'. A name or value that the format can't hold is refused in a sentence that names the
// field: characters that XML forbids, '|' in one of several values. On failure `out` is empty.
CPDFStatus write_form_data(CPDFDocument& document, PDF_DATA_FORMAT format, const std::vector<CPDFField*>* fields,
                           std::string& out, PDF_EXPORT_TEXTS texts = PDF_EXPORT_TEXTS::VALUES);

// Gives the same fields of the whole form with the same values, as JSON has them, to `writer` one after the other.
CPDFStatus visit_form_data(CPDFDocument& document, CPDFDataWriter& writer);
