// The two ways in which the verb list shows fields.
#pragma once

#include "tools/verb.h"

enum class LIST_WHAT {
    NAMED,  // fields with a partial name of their own
    ALL,
};

// Whether the list has the field.
bool is_listed(const CPDFField& field, LIST_WHAT what);

// Each writes to standard output: a JSON array with one object a line, which ends early where the fields share too many
// options, or a table that fits the terminal. `input` is what the document was opened from.
CPDFStatus put_list_json(CPDFDocument& document, const COMMAND_INPUT& input, LIST_WHAT what);
void put_list_table(CPDFDocument& document, LIST_WHAT what);
