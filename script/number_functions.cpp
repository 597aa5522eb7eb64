#include <cmath>

#include "script/form_function_internal.h"
#include "script/functions/characters.h"
#include "script/functions/number.h"

namespace {

// How negative numbers look, by the number that scripts give it.
enum class NEGATIVE_STYLE { MINUS, RED, PARENTHESES, RED_PARENTHESES };

NUMBER_SEPARATORS separators_argument(const SCRIPT_VALUE& value)
{
    return static_cast<NUMBER_SEPARATORS>(int_argument(value, 0, 4));
}

std::string negative_text(const std::string& text, NEGATIVE_STYLE style)
{
    if (style == NEGATIVE_STYLE::RED)
        return text;
    return style == NEGATIVE_STYLE::MINUS ? '-' + text : '(' + text + ')';
}

void set_color(FIELD_EVENT& event, NEGATIVE_STYLE style, bool negative)
{
    if (style == NEGATIVE_STYLE::RED || style == NEGATIVE_STYLE::RED_PARENTHESES)
        event.color = negative ? EVENT_COLOR::RED : EVENT_COLOR::BLACK;
}

// Bounds as people read them: "greater than or equal to 0 and less than or equal to 10".
std::string range_text(const FORM_CALL& call)
{
    std::string out;
    if (call[0].truth())
        out = "greater than or equal to " + print_number(call[1].number());
    if (call[2].truth())
        out += (out.empty() ? "" : " and ") + ("less than or equal to " + print_number(call[3].number()));
    return out;
}

}  // namespace

// AFNumber_Format(decimals, separators, negative style, unused, currency, whether it stands before)
SCRIPT_VALUE number_format(FORM_CALL& call)
{
    FIELD_EVENT& event = call.event;
    const std::optional<double> number = make_number(event.value);
    if (!number) {
        event.value.clear();
        return {};
    }
    std::string text =
        print_fixed(*number, int_argument(call[0], 0, NUMBER_DECIMALS_MAX), separators_argument(call[1]));
    const std::string currency = call[4].text();
    text = call[5].truth() ? currency + text : text + currency;
    const auto style = static_cast<NEGATIVE_STYLE>(int_argument(call[2], 0, 3));
    set_color(event, style, *number < 0);
    event.value = *number < 0 ? negative_text(text, style) : text;
    return {};
}

// AFNumber_Keystroke(decimals, separators, ...): of the arguments of AFNumber_Format only the separators count.
SCRIPT_VALUE number_keystroke(FORM_CALL& call)
{
    FIELD_EVENT& event = call.event;
    const NUMBER_SEPARATORS separators = separators_argument(call[1]);
    if (!event.will_commit) {
        event.rc = is_number_start(merged_value(event), separators);
    } else if (!event.value.empty() && !is_number_text(event.value, separators)) {
        event.rc = false;
        event.message = "The value entered does not match the format of the field [ " + event.target + " ]";
    }
    return {};
}

// AFPercent_Format(decimals, separators, whether the sign stands before)
SCRIPT_VALUE percent_format(FORM_CALL& call)
{
    FIELD_EVENT& event = call.event;
    const std::optional<double> number = make_number(event.value);
    if (!number || !std::isfinite(*number * 100)) {
        event.value.clear();
        return {};
    }
    std::string text =
        print_fixed(*number * 100, int_argument(call[0], 0, NUMBER_DECIMALS_MAX), separators_argument(call[1]));
    if (*number < 0)
        text.insert(0, 1, '-');
    event.value = call[2].truth() ? '%' + text : text + '%';
    return {};
}

// AFPercent_Keystroke(decimals, separators)
SCRIPT_VALUE percent_keystroke(FORM_CALL& call)
{
    return number_keystroke(call);
}

// AFRange_Validate(has lower bound, lower bound, has upper bound, upper bound)
SCRIPT_VALUE range_validate(FORM_CALL& call)
{
    const std::optional<double> number = read_number(call.event.value);
    const bool below = call[0].truth() && number && *number < call[1].number();
    const bool above = call[2].truth() && number && *number > call[3].number();
    if (below || above) {
        call.event.rc = false;
        call.event.message = "Invalid value: must be " + range_text(call) + '.';
    }
    return {};
}

// AFMakeNumber(text)
SCRIPT_VALUE number_made(FORM_CALL& call)
{
    const std::optional<double> number = make_number(call[0].text());
    return number ? SCRIPT_VALUE{*number} : SCRIPT_VALUE{};
}

// AFExtractNums(text)
SCRIPT_VALUE numbers_extracted(FORM_CALL& call)
{
    SCRIPT_LIST list;
    for (std::string& digits : extract_numbers(call[0].text()))
        list.push_back({std::move(digits)});
    return list.empty() ? SCRIPT_VALUE{} : SCRIPT_VALUE{std::move(list)};
}
