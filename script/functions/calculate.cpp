#include "script/functions/calculate.h"

#include <algorithm>
#include <numeric>

#include "script/functions/characters.h"
#include "script/functions/number.h"

namespace {

// In the order of CALCULATION.
constexpr std::string_view NAMES[] = {"SUM", "AVG", "PRD", "MIN", "MAX"};

}  // namespace

std::optional<CALCULATION> calculation_named(std::string_view name)
{
    const auto* found = std::find(std::begin(NAMES), std::end(NAMES), name);
    if (found == std::end(NAMES))
        return std::nullopt;
    return static_cast<CALCULATION>(found - NAMES);
}

double calculate(CALCULATION calculation, const std::vector<double>& numbers)
{
    if (numbers.empty())
        return 0;
    const auto begin = numbers.begin();
    const auto end = numbers.end();
    switch (calculation) {
    case CALCULATION::SUM:
        return std::accumulate(begin, end, 0.0);
    case CALCULATION::AVERAGE:
        return std::accumulate(begin, end, 0.0) / static_cast<double>(numbers.size());
    case CALCULATION::PRODUCT:
        return std::accumulate(begin, end, 1.0, std::multiplies<>());
    case CALCULATION::MINIMUM:
        return *std::min_element(begin, end);
    default:
        return *std::max_element(begin, end);
    }
}

void append_numbers(CALCULATION calculation, const std::vector<std::string>& values, std::vector<double>& numbers)
{
    for (const std::string& value : values)
        if (calculation != CALCULATION::AVERAGE || !trimmed(value).empty())
            numbers.push_back(make_number(value).value_or(0));
}
