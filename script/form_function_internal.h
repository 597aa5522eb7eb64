// The functions behind the table of form_function.cpp, a file each family.
#pragma once

#include "script/form_function.h"

// An argument as a whole number between `low` and `high`, `low` for what is no number.
int int_argument(const SCRIPT_VALUE& value, int low, int high);

// The text that the field will hold when the event is accepted: what is typed, put into the value.
std::string merged_value(const FIELD_EVENT& event);

// number_functions.cpp
SCRIPT_VALUE number_format(FORM_CALL& call);
SCRIPT_VALUE number_keystroke(FORM_CALL& call);
SCRIPT_VALUE percent_format(FORM_CALL& call);
SCRIPT_VALUE percent_keystroke(FORM_CALL& call);
SCRIPT_VALUE range_validate(FORM_CALL& call);
SCRIPT_VALUE number_made(FORM_CALL& call);
SCRIPT_VALUE numbers_extracted(FORM_CALL& call);

// date_functions.cpp
// The pattern that the first argument of a function for dates or times names by its number, or by itself.
std::string date_pattern(const SCRIPT_VALUE& argument);
std::string time_pattern(const SCRIPT_VALUE& argument);
SCRIPT_VALUE date_format(FORM_CALL& call);
SCRIPT_VALUE date_format_ex(FORM_CALL& call);
SCRIPT_VALUE date_keystroke(FORM_CALL& call);
SCRIPT_VALUE date_keystroke_ex(FORM_CALL& call);
SCRIPT_VALUE time_format(FORM_CALL& call);
SCRIPT_VALUE time_keystroke(FORM_CALL& call);
SCRIPT_VALUE time_keystroke_ex(FORM_CALL& call);
SCRIPT_VALUE date_parsed(FORM_CALL& call);
SCRIPT_VALUE date_printed(FORM_CALL& call);
SCRIPT_VALUE date_scanned(FORM_CALL& call);

// text_functions.cpp
SCRIPT_VALUE special_format(FORM_CALL& call);
SCRIPT_VALUE special_keystroke(FORM_CALL& call);
SCRIPT_VALUE special_keystroke_ex(FORM_CALL& call);
SCRIPT_VALUE change_merged(FORM_CALL& call);
SCRIPT_VALUE values_printed(FORM_CALL& call);
SCRIPT_VALUE mask_printed(FORM_CALL& call);

// calculate_functions.cpp
SCRIPT_VALUE simple(FORM_CALL& call);
SCRIPT_VALUE simple_calculate(FORM_CALL& call);
