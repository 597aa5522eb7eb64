// The two ways in which the verb list shows fields.
#pragma once

#include "file/status.h"

class CPDFDocument;
class CPDFField;

enum class LIST_WHAT {
    NAMED,  // fields with a partial name of their own
    ALL,
};

// Whether the list has the field.
bool is_listed(const CPDFField& field, LIST_WHAT what);

// Each writes to standard output: a JSON array with one object a line, which ends early where the fields share too many
// options, or a table that fits the terminal.
CPDFStatus put_list_json(CPDFDocument& document, LIST_WHAT what);
void put_list_table(CPDFDocument& document, LIST_WHAT what);
