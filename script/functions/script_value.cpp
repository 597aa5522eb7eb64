#include "script/functions/script_value.h"

#include <cmath>
#include <limits>

#include "script/functions/characters.h"
#include "script/functions/number.h"

namespace {

double number_of_text(const std::string& text)
{
    if (trimmed(text).empty())
        return 0;
    const bool comma = text.find(',') != std::string::npos;
    return comma ? std::numeric_limits<double>::quiet_NaN()
                 : read_number(text).value_or(std::numeric_limits<double>::quiet_NaN());
}

std::string joined(const SCRIPT_LIST& list)
{
    std::string out;
    for (const SCRIPT_VALUE& value : list) {
        if (&value != &list.front())
            out += ',';
        out += value.text();
    }
    return out;
}

}  // namespace

bool SCRIPT_VALUE::truth() const
{
    if (const bool* flag = std::get_if<bool>(&held))
        return *flag;
    if (const double* value = std::get_if<double>(&held))
        return *value != 0 && !std::isnan(*value);
    if (const std::string* words = std::get_if<std::string>(&held))
        return !words->empty();
    return list() != nullptr;
}

double SCRIPT_VALUE::number() const
{
    if (const bool* flag = std::get_if<bool>(&held))
        return *flag;
    if (const double* value = std::get_if<double>(&held))
        return *value;
    return is_nothing() ? std::numeric_limits<double>::quiet_NaN() : number_of_text(text());
}

std::string SCRIPT_VALUE::text() const
{
    if (const bool* flag = std::get_if<bool>(&held))
        return *flag ? "true" : "false";
    if (const double* value = std::get_if<double>(&held))
        return print_number(*value);
    if (const std::string* words = std::get_if<std::string>(&held))
        return *words;
    return list() ? joined(*list()) : std::string();
}
