// Dates as the pictures of XFA templates write them.
#pragma once

#include <string>
#include <string_view>

struct XFA_DATE {
    int year = 0;
    int month = 0;
    int day = 0;
};

// XFA data hold dates in this form unless a binding says otherwise.
constexpr std::string_view XFA_PLAIN_DATE = "date{YYYY-MM-DD}";

// Reads `text` by the first of the alternatives of `picture` ("date{MM/DD/YYYY}|date{M/D/YY}") that it is written in. Months are digits or
// English words. False when there is none.
bool read_xfa_date(std::string_view picture, std::string_view text, XFA_DATE& date);

// Writes a date as the first alternative of `picture` has it; empty where that is none for dates in digits.
std::string write_xfa_date(std::string_view picture, const XFA_DATE& date);
