// The event that a field's script runs in, as the form functions see it and leave it.
#pragma once

#include <string>
#include <vector>

#include "script/functions/date.h"

// The colour that a number format gives the text of its field.
enum class EVENT_COLOR { AS_IS, BLACK, RED };

// Texts are UTF-8. A keystroke event is one of typing, or the last one, when the value is committed; formats, checks and
// calculations are none and leave the members of typing alone.
struct FIELD_EVENT {
    std::string target;       // full name of the field
    std::string value;        // what the field has; calculations and formats put theirs here
    bool rc = true;           // false: the value, or the key, is refused
    std::string message;      // one sentence on a refusal, as a viewer would show it; typing is refused without
    bool will_commit = true;  // the value is complete
    std::string change;       // what is typed
    int sel_start = -1;       // what it replaces, in characters; -1: everything
    int sel_end = -1;
    EVENT_COLOR color = EVENT_COLOR::AS_IS;
    FORM_DATE today = date_now();  // what a date without a year is completed from
};

// Whoever runs scripts answers what other fields hold.
class CPDFFieldValues {
public:
    virtual ~CPDFFieldValues() = default;

    // Appends the value of the field with that full name, or those of all fields under a group with that name, in UTF-8;
    // nothing where there is neither.
    virtual void append_values(const std::string& name, std::vector<std::string>& out) const = 0;
};
