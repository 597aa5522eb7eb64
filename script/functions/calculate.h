// What AFSimple and AFSimple_Calculate make of several numbers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class CALCULATION { SUM, AVERAGE, PRODUCT, MINIMUM, MAXIMUM };

// The calculation of a name such as "SUM", "AVG", "PRD", "MIN" or "MAX".
std::optional<CALCULATION> calculation_named(std::string_view name);

// The result of `numbers`, 0 for none.
double calculate(CALCULATION calculation, const std::vector<double>& numbers);

// Appends the numbers of the values of fields. An empty one and one that is no number count as 0; an average leaves the empty
// ones out.
void append_numbers(CALCULATION calculation, const std::vector<std::string>& values, std::vector<double>& numbers);
