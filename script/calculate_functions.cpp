#include "script/form_function_internal.h"
#include "script/functions/calculate.h"
#include "script/functions/characters.h"
#include "script/functions/number.h"
#include "script/known_call.h"

namespace {

// The names that a list has, or a text with commas.
std::vector<std::string> names_argument(const SCRIPT_VALUE& value)
{
    std::vector<std::string> names;
    if (const SCRIPT_LIST* list = value.list()) {
        for (const SCRIPT_VALUE& name : *list)
            names.push_back(name.text());
        return names;
    }
    const std::string text = value.text();
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(',', begin), text.size());
        names.emplace_back(trimmed(std::string_view(text).substr(begin, end - begin)));
        begin = end + 1;
    }
    return names;
}

}  // namespace

std::vector<std::string> calculated_from(const KNOWN_CALL& call)
{
    const bool calculates = call.function->run == simple_calculate && call.arguments.size() > 1;
    return calculates ? names_argument(call.arguments[1]) : std::vector<std::string>();
}

// AFSimple(calculation, number, number)
SCRIPT_VALUE simple(FORM_CALL& call)
{
    const std::optional<CALCULATION> calculation = calculation_named(call[0].text());
    const auto number = [&](size_t index) { return make_number(call[index].text()).value_or(0); };
    return calculation ? SCRIPT_VALUE{calculate(*calculation, {number(1), number(2)})} : SCRIPT_VALUE{};
}

// AFSimple_Calculate(calculation, names)
SCRIPT_VALUE simple_calculate(FORM_CALL& call)
{
    const std::optional<CALCULATION> calculation = calculation_named(call[0].text());
    if (!calculation)
        return {};
    // The texts of one name at a time: a list may name a large group thousands of times.
    std::vector<double> numbers;
    for (const std::string& name : names_argument(call[1])) {
        std::vector<std::string> values;
        call.fields.append_values(name, values);
        append_numbers(*calculation, values, numbers);
    }
    call.event.value = print_number(calculate(*calculation, numbers));
    return {};
}
