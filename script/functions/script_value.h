// Values as scripts hand them to form functions and get them back.
#pragma once

#include <string>
#include <variant>
#include <vector>

struct SCRIPT_VALUE;
using SCRIPT_LIST = std::vector<SCRIPT_VALUE>;

// One of: nothing (null and undefined), true or false, a number, a text in UTF-8, a list. A date is a text,
// 2021-03-04T15:05:09 in UTC, or a number of milliseconds since 1970 began.
struct SCRIPT_VALUE {
    std::variant<std::monostate, bool, double, std::string, SCRIPT_LIST> held;

    bool is_nothing() const { return std::holds_alternative<std::monostate>(held); }
    const SCRIPT_LIST* list() const { return std::get_if<SCRIPT_LIST>(&held); }

    // As scripts convert them.
    bool truth() const;
    double number() const;  // NaN for what is none
    std::string text() const;
};
