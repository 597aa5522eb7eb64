// Dates of form functions: a day of the Gregorian calendar and a time in it, in UTC whatever the machine is set to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

struct FORM_DATE {
    int year = 1970;
    int month = 1;  // 1 to 12
    int day = 1;    // 1 to 31
    int hour = 0;   // 0 to 23
    int minute = 0;
    int second = 0;
};

// What the clock says now.
FORM_DATE date_now();

// Milliseconds since 1970 began, and back; nothing for what lies outside the years 0 to 9999.
std::optional<FORM_DATE> date_of_milliseconds(double milliseconds);

// Whether the calendar has that day and the day that time.
bool date_exists(const FORM_DATE& date);

// Prints `date` as `format` says:
//   yyyy yy   mmmm mmm mm m   dddd ddd dd d   HH H (0 to 23)   hh h (1 to 12)   MM M   ss s   tt (am, pm)  t (a, p)
// Names are English. Everything else stands for itself. A character behind a backslash is printed as its number: that is
// what viewers make of it.
std::string print_date(const FORM_DATE& date, std::string_view format);

// Which parts `format` has, each once in their order, of y, m and d; and whether it has parts of a time.
std::string date_order(std::string_view format);
bool has_time_parts(std::string_view format);

// English names, full; `month` from 1 and `weekday` from 0, Sunday.
std::string_view month_name(int month);
std::string_view weekday_name(int weekday);
