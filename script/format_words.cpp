#include "script/format_words.h"

#include <algorithm>
#include <string_view>

#include "script/form_function_internal.h"

namespace {

std::string decimals_words(const SCRIPT_VALUE& decimals)
{
    const int count = int_argument(decimals, 0, 100);
    return count == 0 ? "no decimals" : std::to_string(count) + (count == 1 ? " decimal" : " decimals");
}

// AFNumber_Format(decimals, separators, negatives, unused, currency, ...)
std::string number_words(const FORM_CALL& call)
{
    std::string currency = call[4].text();
    std::erase(currency, ' ');
    const std::string words = "number, " + decimals_words(call[0]);
    return call[4].is_nothing() || currency.empty() ? words : words + ", in " + currency;
}

std::string percent_words(const FORM_CALL& call)
{
    return "percentage, " + decimals_words(call[0]);
}

std::string date_words(const FORM_CALL& call)
{
    return "date " + date_pattern(call[0]);
}

std::string time_words(const FORM_CALL& call)
{
    return "time " + time_pattern(call[0]);
}

std::string special_words(const FORM_CALL& call)
{
    constexpr std::string_view WORDS[] = {"zip code, 5 digits", "zip code, 9 digits", "phone number",
                                          "social security number"};
    return std::string(WORDS[int_argument(call[0], 0, 3)]);
}

std::string mask_words(const FORM_CALL& call)
{
    return "text like " + call[0].text();
}

constexpr struct {
    std::string_view begin;  // of the function's name
    std::string (*words)(const FORM_CALL& call);
} WORDS[] = {
    {"AFNumber_", number_words}, {"AFPercent_", percent_words},         {"AFDate_", date_words},
    {"AFTime_", time_words},     {"AFSpecial_KeystrokeEx", mask_words}, {"AFSpecial_", special_words},
};

struct NO_VALUES : CPDFFieldValues {
    void append_values(const std::string&, std::vector<std::string>&) const override {}
};

}  // namespace

std::string format_words(const KNOWN_CALL& call)
{
    FIELD_EVENT event;
    const NO_VALUES fields;
    const FORM_CALL arguments = {call.arguments, event, fields};
    for (const auto& at : WORDS) {
        if (call.function->name.substr(0, at.begin.size()) == at.begin)
            return at.words(arguments);
    }
    return {};
}
