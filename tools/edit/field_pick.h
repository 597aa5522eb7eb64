// Which fields a verb works on, when it takes several.
#pragma once

#include <string>
#include <vector>

#include "tools/verb.h"

struct FIELD_PICK {
    std::vector<COMMAND_WORD> names;  // full names, or patterns with '*'
    bool all = false;
    COMMAND_WORD kind;  // of those that --all or a pattern takes; empty for every kind
};

// Adds names, --all and --kind.
void add_field_pick(CLI::App& verb, FIELD_PICK& pick);

// Whether the words make sense.
CPDFStatus check_field_pick(const FIELD_PICK& pick);

// The fields of the document, each once, in the order of the names. Notes in `refusals` a name that no field has and a
// pattern that fits none. Groups are taken by their names only.
std::vector<CPDFField*> choose_fields(CPDFDocument& document, const FIELD_PICK& pick,
                                      std::vector<CPDFStatus>& refusals);
