// What a fill will do: every value with the field it goes to, or the reason why it doesn't.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/fill/filler.h"
#include "formats/import/form_data.h"

class CPDFDocument;

// One name of the data with its value.
struct FILL_ITEM {
    std::string name;
    CPDFValue value;
    PDF_FILL_PLAN plan;   // usable when `refusal` is empty
    std::string refusal;  // a sentence
    PDF_WORDS words = PDF_WORDS::STATES_FIRST;
    bool is_typed = false;
};

// Checks all of `data`, changing nothing. Values for one list box that takes several are joined; a second value for any
// other field is refused.
std::vector<FILL_ITEM> plan_items(CPDFDocument& document, const CPDFFormData& data, PDF_FILL fill);

// Whether every item was accepted.
bool all_accepted(const std::vector<FILL_ITEM>& items);

// Carries out the plans that were accepted, up to the first that fails.
CPDFStatus apply_items(CPDFDocument& document, const std::vector<FILL_ITEM>& items);

// `text` between quotes, for a sentence; cut when it is long.
std::string in_quotes(std::string_view text);

// The start of a sentence about a name that no field has.
std::string no_such_field(std::string_view name);
