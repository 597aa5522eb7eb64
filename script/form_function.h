// The well-known functions that forms call: AFNumber_Format and the like, util.printf and the like. They are the same for
// calls that are recognised in a script and for scripts that run.
#pragma once

#include <span>
#include <string_view>

#include "script/event.h"
#include "script/functions/script_value.h"

struct FORM_CALL {
    const SCRIPT_LIST& arguments;
    FIELD_EVENT& event;
    const CPDFFieldValues& fields;

    // The argument of that index; nothing when there are fewer.
    const SCRIPT_VALUE& operator[](size_t index) const;
};

// Every function is total: whatever the arguments are, it ends in time that grows with their size, and changes nothing but
// the event.
struct FORM_FUNCTION {
    std::string_view name;
    SCRIPT_VALUE (*run)(FORM_CALL& call);
};

// All of them, by name. Names end with a zero byte.
std::span<const FORM_FUNCTION> form_functions();

// The function of that name, or null.
const FORM_FUNCTION* find_form_function(std::string_view name);
