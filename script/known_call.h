// Scripts that are one call of a well-known function: they need no interpreter.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "script/form_function.h"

// Longer scripts are no known calls, nor are such with more arguments, those of lists counted.
constexpr size_t KNOWN_CALL_SIZE_MAX = 256 * 1024;
constexpr size_t KNOWN_CALL_ARGUMENTS_MAX = 10000;

struct KNOWN_CALL {
    const FORM_FUNCTION* function;  // borrowed from the table of functions, which lasts
    SCRIPT_LIST arguments;
};

// Recognises a script, which is UTF-8, that is exactly one call of a function of that table with literal arguments: texts,
// numbers, true, false, null, and lists of these as [...] or new Array(...). Comments, white space and semicolons do not
// count.
std::optional<KNOWN_CALL> read_known_call(std::string_view script);

// The names of the fields and groups whose values the call calculates with; none where it calculates nothing.
std::vector<std::string> calculated_from(const KNOWN_CALL& call);

// Runs it. What it returns is of use to scripts only; what counts for a field is in the event.
SCRIPT_VALUE run_known_call(const KNOWN_CALL& call, FIELD_EVENT& event, const CPDFFieldValues& fields);
