// Dates as people type them, read for a field that has a format.
#pragma once

#include <optional>
#include <string_view>

#include "script/functions/date.h"

// Reads a date. Numbers and names of months, which may be cut to three letters, go by the order of the parts in `format`;
// when that gives no date of the calendar, or numbers are missing or too many, by the usual spellings: 3/4/2021, 4 Mar 2021,
// March 4, 2021, 2021-03-04. What stands between them does not matter. A time (15:30, 3:30:00 pm) may stand with it; one
// that is not there is midnight. Years of two digits turn at 50: 49 is 2049. Parts that are missing are those of `today`, or
// the first. A format with parts of a time only wants a time. Nothing when the text has other words or is no date that
// exists.
std::optional<FORM_DATE> read_date(std::string_view text, std::string_view format, const FORM_DATE& today);

// Whether a field for times with that format takes `text` when it is committed: a time, and am or pm only where neither the
// text nor the format has seconds.
bool is_time_text(std::string_view text, std::string_view format);
