#include "script/form_function_internal.h"
#include "script/functions/characters.h"
#include "script/functions/date.h"
#include "script/functions/date_reader.h"

namespace {

// The formats that forms call by number.
constexpr std::string_view DATE_FORMATS[] = {"m/d",         "m/d/yy",       "mm/dd/yy",       "mm/yy",       "d-mmm",
                                             "d-mmm-yy",    "dd-mmm-yy",    "yy-mm-dd",       "mmm-yy",      "mmmm-yy",
                                             "mmm d, yyyy", "mmmm d, yyyy", "m/d/yy h:MM tt", "m/d/yy HH:MM"};
constexpr std::string_view TIME_FORMATS[] = {"HH:MM", "h:MM tt", "HH:MM:ss", "h:MM:ss tt"};
constexpr std::string_view PRINT_FORMATS[] = {"D:yyyymmddHHMMss", "yyyy.mm.dd HH:MM:ss", "yyyy/mm/dd HH:MM:ss"};

// How dates stand in SCRIPT_VALUE. The T is no part of a format.
constexpr std::string_view VALUE_FORMAT = "yyyy-mm-ddTHH:MM:ss";

// The format that an argument names by its number, or by itself.
template <size_t Size>
std::string format_argument(const SCRIPT_VALUE& value, const std::string_view (&formats)[Size])
{
    if (std::holds_alternative<double>(value.held))
        return std::string(formats[int_argument(value, 0, Size - 1)]);
    return value.text();
}

SCRIPT_VALUE value_of(const std::optional<FORM_DATE>& date)
{
    return date ? SCRIPT_VALUE{print_date(*date, VALUE_FORMAT)} : SCRIPT_VALUE{};
}

std::optional<FORM_DATE> date_argument(const SCRIPT_VALUE& value, const FORM_DATE& today)
{
    if (const double* milliseconds = std::get_if<double>(&value.held))
        return date_of_milliseconds(*milliseconds);
    return read_date(value.text(), VALUE_FORMAT, today);
}

void format_date(FIELD_EVENT& event, std::string_view format)
{
    const std::optional<FORM_DATE> date = read_date(event.value, format, event.today);
    event.value = date ? print_date(*date, format) : std::string();
}

void check_date(FIELD_EVENT& event, std::string_view format, bool good)
{
    if (!event.will_commit || trimmed(event.value).empty() || good)
        return;
    event.rc = false;
    event.message = "Invalid date/time: please ensure that the date/time exists. Field [ " + event.target +
                    " ] should match format " + std::string(format);
}

void check_date(FIELD_EVENT& event, std::string_view format)
{
    check_date(event, format, read_date(event.value, format, event.today).has_value());
}

void check_time(FIELD_EVENT& event, std::string_view format)
{
    check_date(event, format, is_time_text(event.value, format));
}

}  // namespace

std::string date_pattern(const SCRIPT_VALUE& argument)
{
    return format_argument(argument, DATE_FORMATS);
}

std::string time_pattern(const SCRIPT_VALUE& argument)
{
    return format_argument(argument, TIME_FORMATS);
}

// AFDate_Format(index of a format)
SCRIPT_VALUE date_format(FORM_CALL& call)
{
    format_date(call.event, date_pattern(call[0]));
    return {};
}

// AFDate_FormatEx(format), AFTime_FormatEx(format)
SCRIPT_VALUE date_format_ex(FORM_CALL& call)
{
    format_date(call.event, call[0].text());
    return {};
}

// AFDate_Keystroke(index of a format)
SCRIPT_VALUE date_keystroke(FORM_CALL& call)
{
    check_date(call.event, date_pattern(call[0]));
    return {};
}

// AFDate_KeystrokeEx(format)
SCRIPT_VALUE date_keystroke_ex(FORM_CALL& call)
{
    check_date(call.event, call[0].text());
    return {};
}

// AFTime_Format(index of a format)
SCRIPT_VALUE time_format(FORM_CALL& call)
{
    format_date(call.event, time_pattern(call[0]));
    return {};
}

// AFTime_Keystroke(index of a format)
SCRIPT_VALUE time_keystroke(FORM_CALL& call)
{
    check_time(call.event, time_pattern(call[0]));
    return {};
}

// AFTime_KeystrokeEx(format)
SCRIPT_VALUE time_keystroke_ex(FORM_CALL& call)
{
    check_time(call.event, call[0].text());
    return {};
}

// AFParseDateEx(text, format or order of its parts)
SCRIPT_VALUE date_parsed(FORM_CALL& call)
{
    return value_of(read_date(call[0].text(), call[1].text(), call.event.today));
}

// util.printd(format, date)
SCRIPT_VALUE date_printed(FORM_CALL& call)
{
    const std::optional<FORM_DATE> date = date_argument(call[1], call.event.today);
    return date ? SCRIPT_VALUE{print_date(*date, format_argument(call[0], PRINT_FORMATS))} : SCRIPT_VALUE{};
}

// util.scand(format, text)
SCRIPT_VALUE date_scanned(FORM_CALL& call)
{
    return value_of(read_date(call[1].text(), format_argument(call[0], PRINT_FORMATS), call.event.today));
}
