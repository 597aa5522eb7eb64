// Numbers of form functions: read from what people type, printed with separators.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What separates thousands and decimals, by the number that scripts give it.
enum class NUMBER_SEPARATORS {
    COMMA_POINT,       // 1,234.56
    POINT,             // 1234.56
    POINT_COMMA,       // 1.234,56
    COMMA,             // 1234,56
    APOSTROPHE_POINT,  // 1'234.56
};

// More decimals are cut to these: a double has no more to say.
constexpr int NUMBER_DECIMALS_MAX = 20;

// Reads the whole of `text`, blanks around it aside: a sign, digits with a decimal point or comma, an exponent. Nothing when
// it is no such number, or too large for a double.
std::optional<double> read_number(std::string_view text);

// The runs of digits in `text`; one that begins with a point or comma has a 0 before it.
std::vector<std::string> extract_numbers(std::string_view text);

// Reads a number out of a text in which other things may stand, such as a currency: the first run of digits is the whole
// part, the second the decimals. More runs make a number only when thousands are separated in one way and decimals in
// another.
std::optional<double> make_number(std::string_view text);

// Whether `text` is a number as fields with such separators take it when it is committed, or the beginning of one.
bool is_number_text(std::string_view text, NUMBER_SEPARATORS separators);
bool is_number_start(std::string_view text, NUMBER_SEPARATORS separators);

// Prints the magnitude of a finite number, halves of what the double really holds rounded up.
std::string print_fixed(double value, int decimals, NUMBER_SEPARATORS separators);

// Prints a number as scripts do: the fewest digits that read back as the same double.
std::string print_number(double value);
