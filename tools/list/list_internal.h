// The two ways in which the verb list shows fields.
#pragma once

#include "document/xfa/data_value.h"
#include "tools/verb.h"

enum class LIST_WHAT {
    NAMED,  // fields with a partial name of their own
    ALL,
};

enum class LIST_FORM {
    TEXT,
    JSON,
};

// Writes what the document has, at a glance: lines, or one object.
CPDFStatus put_list_summary(CPDFDocument& document, LIST_FORM form);

// Whether the list has the field.
bool is_listed(const CPDFField& field, LIST_WHAT what);

// The values of a form that has them in XFA data alone, and no fields. Says so where they can't be read.
std::vector<PDF_XFA_VALUE> xfa_values_of(CPDFDocument& document, const COMMAND_INPUT& input);

// Each writes to standard output: a JSON array with one object a line, which ends early where the fields share too many
// options, or a table that fits the terminal. `input` is what the document was opened from.
CPDFStatus put_list_json(CPDFDocument& document, const COMMAND_INPUT& input, LIST_WHAT what,
                         const std::vector<PDF_XFA_VALUE>& data);

// Return how many fields have the name of one before them.
size_t put_list_table(CPDFDocument& document, LIST_WHAT what, const std::vector<PDF_XFA_VALUE>& data);

// All that the table leaves out or cuts, some lines for each field.
size_t put_list_long(CPDFDocument& document, LIST_WHAT what, const std::vector<PDF_XFA_VALUE>& data);
