// What a script that formats or checks values says, in words for people.
#pragma once

#include <string>

#include "script/known_call.h"

// Such as "number, 2 decimals", "date mm/dd/yyyy", "5 digits" or "text like 999-AA"; empty for a call that says nothing of
// this kind.
std::string format_words(const KNOWN_CALL& call);
