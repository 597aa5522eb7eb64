// Printing by a format, as util.printf and util.printx do.
#pragma once

#include <string>
#include <string_view>

#include "script/functions/script_value.h"

// What is printed is cut at this size.
constexpr size_t PRINT_SIZE_MAX = 1 << 20;

// Prints `values` into a format. Its conversions are
//   %[,separators][flags][width][.precision]d|f|s|x
// with separators 0 to 4 as in NUMBER_SEPARATORS, and the flags + (a sign always), space (room for one), 0 (zeros up to the
// width) and # (0x before x). All else, %% too, stands for itself, as does a conversion without a value.
std::string print_values(std::string_view format, const SCRIPT_LIST& values);

// Prints the characters of `text` into a mask: 9 takes the next digit, A the next letter, X the next letter or digit, ? the
// next character, * all others; > makes capitals, < small letters, = neither, from there on. A backslash makes the next
// character stand for itself, as all others do. Stops when the text has no more of what is wanted.
std::string print_by_mask(std::string_view mask, std::string_view text);
