// What the parts of the verb list share.
#pragma once

#include "document/xfa/data_value.h"
#include "formats/list/list_json.h"
#include "tools/verb.h"

enum class LIST_FORM {
    TEXT,
    JSON,
};

// Writes what the document has, at a glance: lines, or one object.
CPDFStatus put_list_summary(CPDFDocument& document, LIST_FORM form);

// The values of a form that has them in XFA data alone, and no fields. Says so where they can't be read.
std::vector<PDF_XFA_VALUE> xfa_values_of(CPDFDocument& document, const COMMAND_INPUT& input);

// A table that fits the terminal, to standard output. Both return how many fields have the name of one before them.
size_t put_list_table(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data);

// All that the table leaves out or cuts, some lines for each field.
size_t put_list_long(CPDFDocument& document, PDF_LISTED what, const std::vector<PDF_XFA_VALUE>& data);
