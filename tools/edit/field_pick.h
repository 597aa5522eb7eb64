// Which fields a verb works on, when it takes several.
#pragma once

#include <string>
#include <vector>

#include "tools/verb.h"

struct FIELD_PICK {
    std::vector<COMMAND_WORD> names;  // as find_field takes them, or patterns with '*'
    bool all = false;
    COMMAND_WORD kind;  // of those that --all or a pattern takes; empty for every kind
};

// Adds names, --all and --kind.
void add_field_pick(CLI::App& verb, FIELD_PICK& pick);

// Whether the words make sense.
CPDFStatus check_field_pick(const FIELD_PICK& pick);

// The fields of the document, each once, in the order of the names. Notes in `refusals` a name that no field has and a
// pattern that fits none. Groups are taken by their names only.
std::vector<CPDFField*> choose_fields(CPDFDocument& document, const COMMAND_INPUT& input, const FIELD_PICK& pick,
                                      std::vector<CPDFStatus>& refusals);

// The field that is meant by a word, see find_field; says so where that is no full name. Null, with the reason in `refusals`, where
// there is none.
CPDFField* choose_field(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name,
                        std::vector<CPDFStatus>& refusals, PDF_FIELD_WORDS words = PDF_FIELD_WORDS::PARTS);
