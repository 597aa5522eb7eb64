#include "script/functions/date.h"

#include <chrono>
#include <cmath>

#include "script/functions/characters.h"

namespace {

namespace chrono = std::chrono;

constexpr std::string_view MONTHS[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
constexpr std::string_view WEEKDAYS[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

chrono::year_month_day calendar_day(const FORM_DATE& date)
{
    return {chrono::year(date.year), chrono::month(static_cast<unsigned>(date.month)),
            chrono::day(static_cast<unsigned>(date.day))};
}

int weekday_of(const FORM_DATE& date)
{
    return static_cast<int>(chrono::weekday(chrono::sys_days(calendar_day(date))).c_encoding());
}

FORM_DATE date_of_seconds(chrono::sys_seconds time)
{
    const auto day = chrono::floor<chrono::days>(time);
    const chrono::year_month_day ymd(day);
    const chrono::hh_mm_ss<chrono::seconds> clock(time - day);
    return {static_cast<int>(ymd.year()),
            static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

std::string padded(int value, size_t width)
{
    const std::string digits = std::to_string(value);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

int twelve(int hour)
{
    return hour % 12 == 0 ? 12 : hour % 12;
}

// The parts of a format. One that begins like another stands behind it if it is shorter.
struct FORMAT_PART {
    std::string_view code;
    char part;  // of an order: y, m, d; t for parts of a time; 0 for none
    std::string (*print)(const FORM_DATE&);
};

constexpr FORMAT_PART PARTS[] = {
    {"yyyy", 'y', [](const FORM_DATE& d) { return padded(d.year, 4); }},
    {"yy", 'y', [](const FORM_DATE& d) { return padded(d.year % 100, 2); }},
    {"mmmm", 'm', [](const FORM_DATE& d) { return std::string(month_name(d.month)); }},
    {"mmm", 'm', [](const FORM_DATE& d) { return std::string(month_name(d.month).substr(0, 3)); }},
    {"mm", 'm', [](const FORM_DATE& d) { return padded(d.month, 2); }},
    {"m", 'm', [](const FORM_DATE& d) { return padded(d.month, 1); }},
    {"dddd", 0, [](const FORM_DATE& d) { return std::string(weekday_name(weekday_of(d))); }},
    {"ddd", 0, [](const FORM_DATE& d) { return std::string(weekday_name(weekday_of(d)).substr(0, 3)); }},
    {"dd", 'd', [](const FORM_DATE& d) { return padded(d.day, 2); }},
    {"d", 'd', [](const FORM_DATE& d) { return padded(d.day, 1); }},
    {"HH", 't', [](const FORM_DATE& d) { return padded(d.hour, 2); }},
    {"H", 't', [](const FORM_DATE& d) { return padded(d.hour, 1); }},
    {"hh", 't', [](const FORM_DATE& d) { return padded(twelve(d.hour), 2); }},
    {"h", 't', [](const FORM_DATE& d) { return padded(twelve(d.hour), 1); }},
    {"MM", 't', [](const FORM_DATE& d) { return padded(d.minute, 2); }},
    {"M", 't', [](const FORM_DATE& d) { return padded(d.minute, 1); }},
    {"ss", 't', [](const FORM_DATE& d) { return padded(d.second, 2); }},
    {"s", 't', [](const FORM_DATE& d) { return padded(d.second, 1); }},
    {"tt", 't', [](const FORM_DATE& d) { return std::string(d.hour < 12 ? "am" : "pm"); }},
    {"t", 't', [](const FORM_DATE& d) { return std::string(d.hour < 12 ? "a" : "p"); }},
};

// The part that `format` begins with, or null.
const FORMAT_PART* part_at(std::string_view format)
{
    for (const FORMAT_PART& part : PARTS)
        if (format.starts_with(part.code))
            return &part;
    return nullptr;
}

// Calls `take` with every part of `format`, and with null and its length for what is none.
template <typename Take>
void walk_format(std::string_view format, Take&& take)
{
    while (!format.empty()) {
        const FORMAT_PART* part = part_at(format);
        size_t length = part ? part->code.size() : 1;
        if (format[0] == '\\' && format.size() > 1)
            for (length = 2; length < format.size() && (format[length] & 0xC0) == 0x80;)
                ++length;
        take(part, format.substr(0, length));
        format.remove_prefix(length);
    }
}

}  // namespace

FORM_DATE date_now()
{
    return date_of_seconds(chrono::floor<chrono::seconds>(chrono::system_clock::now()));
}

std::optional<FORM_DATE> date_of_milliseconds(double milliseconds)
{
    if (!(milliseconds >= -62167219200000.0 && milliseconds < 253402300800000.0))
        return std::nullopt;
    return date_of_seconds(chrono::sys_seconds(chrono::seconds(static_cast<int64_t>(std::floor(milliseconds / 1000)))));
}

bool date_exists(const FORM_DATE& date)
{
    return calendar_day(date).ok() && date.year >= 0 && date.year <= 9999 && date.hour >= 0 && date.hour < 24 &&
           date.minute >= 0 && date.minute < 60 && date.second >= 0 && date.second < 60;
}

std::string print_date(const FORM_DATE& date, std::string_view format)
{
    std::string out;
    walk_format(format, [&](const FORMAT_PART* part, std::string_view text) {
        if (part)
            out += part->print(date);
        else if (text.size() > 1)
            out += std::to_string(static_cast<uint32_t>(characters_of(text.substr(1))[0]));
        else
            out += text;
    });
    return out;
}

std::string date_order(std::string_view format)
{
    std::string order;
    walk_format(format, [&](const FORMAT_PART* part, std::string_view text) {
        const char c = part ? part->part : text == "y" ? 'y' : '\0';
        if (c != '\0' && c != 't' && order.find(c) == std::string::npos)
            order += c;
    });
    return order;
}

bool has_time_parts(std::string_view format)
{
    bool found = false;
    walk_format(format, [&](const FORMAT_PART* part, std::string_view) { found |= part && part->part == 't'; });
    return found;
}

std::string_view month_name(int month)
{
    return MONTHS[month - 1];
}

std::string_view weekday_name(int weekday)
{
    return WEEKDAYS[weekday];
}
