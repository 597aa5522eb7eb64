#include "script/functions/date_reader.h"

#include <algorithm>
#include <vector>

#include "script/functions/characters.h"

namespace {

// Longer ones are no dates.
constexpr size_t DATE_LENGTH_MAX = 200;

constexpr size_t NUMBERS_MAX = 3;

struct CLOCK_TIME {
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool has_seconds = false;
    bool has_half = false;  // am or pm
};

// What a text has of a date.
struct DATE_PIECES {
    std::vector<std::string_view> numbers;
    int month = 0;  // by its name; 0: none
    std::optional<CLOCK_TIME> time;
};

int int_of(std::string_view digits)
{
    int value = 0;
    for (const char c : digits)
        value = value * 10 + (c - '0');
    return value;
}

// Whether `word` is a name, or the beginning of one that is not too short.
bool is_name(const std::string& word, std::string_view name)
{
    return word.size() >= 3 && lowered(name).starts_with(word);
}

class CPDFDateTokens {
public:
    explicit CPDFDateTokens(std::string_view text) : m_text(text) {}

    // Nothing when the text has what belongs into no date.
    std::optional<DATE_PIECES> read()
    {
        while (m_at < m_text.size() && m_good) {
            if (is_digit(m_text[m_at]))
                take_number();
            else if (is_letter(m_text[m_at]))
                take_word();
            else
                ++m_at;
        }
        if (!m_good || m_pieces.numbers.size() > NUMBERS_MAX)
            return std::nullopt;
        return std::move(m_pieces);
    }

private:
    std::string_view run(bool (*is_part)(char32_t))
    {
        const size_t begin = m_at;
        while (m_at < m_text.size() && is_part(static_cast<unsigned char>(m_text[m_at])))
            ++m_at;
        return m_text.substr(begin, m_at - begin);
    }

    std::string_view digits()
    {
        return run([](char32_t c) { return is_digit(c); });
    }
    std::string word()
    {
        return lowered(run([](char32_t c) { return is_letter(c); }));
    }

    // Passes a colon that has a digit behind it.
    bool pass_colon()
    {
        if (m_at + 1 >= m_text.size() || m_text[m_at] != ':' || !is_digit(m_text[m_at + 1]))
            return false;
        ++m_at;
        return true;
    }

    void take_number()
    {
        const std::string_view number = digits();
        if (pass_colon())
            take_time(number);
        else
            m_pieces.numbers.push_back(number);
        m_good = m_good && number.size() <= 8;
    }

    void take_time(std::string_view hour)
    {
        const std::string_view minute = digits();
        CLOCK_TIME time;
        time.has_seconds = pass_colon();
        const std::string_view second = time.has_seconds ? digits() : "";
        if (time.has_seconds && m_at + 1 < m_text.size() && m_text[m_at] == '.' && is_digit(m_text[m_at + 1])) {
            ++m_at;
            digits();  // a fraction of a second
        }
        m_good = !m_pieces.time && hour.size() <= 2 && minute.size() <= 2 && second.size() <= 2;
        if (!m_good)
            return;
        time.hour = int_of(hour);
        time.minute = int_of(minute);
        time.second = int_of(second);
        take_half(time);
        m_pieces.time = time;
        m_good = m_good && time.hour < 24 && time.minute < 60 && time.second < 60;
    }

    void take_half(CLOCK_TIME& time)
    {
        const size_t before = m_at;
        while (m_at < m_text.size() && is_blank(static_cast<unsigned char>(m_text[m_at])))
            ++m_at;
        const std::string half = word();
        time.has_half = half == "am" || half == "pm";
        if (!time.has_half) {
            m_at = before;
            return;
        }
        m_good = time.hour >= 1 && time.hour <= 12;
        time.hour = time.hour % 12 + (half == "pm" ? 12 : 0);
    }

    void take_word()
    {
        const bool after_digit = m_at > 0 && is_digit(m_text[m_at - 1]);
        const std::string text = word();
        const bool before_digit = m_at < m_text.size() && is_digit(m_text[m_at]);
        for (int month = 1; month <= 12; ++month) {
            if (is_name(text, month_name(month))) {
                m_good = m_pieces.month == 0;
                m_pieces.month = month;
                return;
            }
        }
        for (int weekday = 0; weekday < 7; ++weekday)
            if (is_name(text, weekday_name(weekday)))
                return;
        const bool ordinal = text == "st" || text == "nd" || text == "rd" || text == "th";
        m_good = after_digit && (ordinal || text == "z" || (text == "t" && before_digit));
    }

    std::string_view m_text;
    size_t m_at = 0;
    bool m_good = true;
    DATE_PIECES m_pieces;
};

std::optional<DATE_PIECES> pieces_of(std::string_view text)
{
    if (text.size() > DATE_LENGTH_MAX)
        return std::nullopt;
    return CPDFDateTokens(text).read();
}

// False when so many digits are no year.
bool set_year(FORM_DATE& date, std::string_view digits)
{
    date.year = int_of(digits);
    if (digits.size() <= 2)
        date.year += date.year < 50 ? 2000 : 1900;
    return digits.size() <= 2 || digits.size() == 4;
}

// A date from numbers that mean y, m and d in the order that `order` says, which has as many.
std::optional<FORM_DATE> date_in_order(const DATE_PIECES& pieces, std::string_view order, const FORM_DATE& today)
{
    FORM_DATE date;
    date.year = today.year;
    if (order == "d")
        date.month = today.month;
    if (pieces.month)
        date.month = pieces.month;
    bool good = true;
    for (size_t i = 0; i < order.size(); ++i) {
        const std::string_view digits = pieces.numbers[i];
        if (order[i] == 'y')
            good &= set_year(date, digits);
        else
            good &= digits.size() <= 2;
        if (order[i] == 'm')
            date.month = int_of(digits);
        if (order[i] == 'd')
            date.day = int_of(digits);
    }
    if (!good || !date_exists(date))
        return std::nullopt;
    return date;
}

// Cuts one long number into two digits for each part of `order`, four for a year where there are so many: 20210304.
std::vector<std::string_view> unpacked(std::string_view digits, std::string_view order)
{
    const size_t short_size = 2 * order.size();
    if (digits.size() != short_size && (digits.size() != short_size + 2 || order.find('y') == std::string_view::npos))
        return {};
    const size_t year_size = 2 + digits.size() - short_size;
    std::vector<std::string_view> numbers;
    for (const char part : order) {
        numbers.push_back(digits.substr(0, part == 'y' ? year_size : 2));
        digits.remove_prefix(numbers.back().size());
    }
    return numbers;
}

// The order of `count` numbers by a format's own order, in which a year may be missing or one too many; empty when they
// don't fit.
std::string own_order(std::string order, size_t count, bool month_named)
{
    if (month_named)
        std::erase(order, 'm');
    const size_t year = order.find('y');
    if (count + 1 == order.size() && year != std::string::npos && count + month_named >= 2)
        order.erase(year, 1);
    else if (count == order.size() + 1 && year == std::string::npos)
        order += 'y';
    return order.size() == count ? order : "";
}

std::string usual_order(const std::vector<std::string_view>& numbers, bool month_named)
{
    const bool year_first = !numbers.empty() && numbers[0].size() == 4;
    switch (numbers.size()) {
    case 1:
        return !month_named ? "" : year_first ? "y" : "d";
    case 2:
        if (month_named)
            return year_first ? "yd" : "dy";
        return year_first ? "ym" : numbers[1].size() == 4 ? "my" : "md";
    case 3:
        return month_named ? "" : year_first ? "ymd" : "mdy";
    default:
        return "";
    }
}

std::optional<FORM_DATE> day_of(DATE_PIECES pieces, const std::string& order, const FORM_DATE& today)
{
    const bool month_named = pieces.month != 0;
    if (pieces.numbers.empty())
        return month_named && order == "m" ? date_in_order(pieces, "", today) : std::nullopt;
    if (pieces.numbers.size() == 1 && order.size() > 1 && pieces.numbers[0].size() >= 4 && !month_named)
        pieces.numbers = unpacked(pieces.numbers[0], order);
    for (const std::string& tried :
         {own_order(order, pieces.numbers.size(), month_named), usual_order(pieces.numbers, month_named)})
        if (!tried.empty())
            if (const std::optional<FORM_DATE> date = date_in_order(pieces, tried, today))
                return date;
    return std::nullopt;
}

FORM_DATE at_time(FORM_DATE date, const CLOCK_TIME& time)
{
    date.hour = time.hour;
    date.minute = time.minute;
    date.second = time.second;
    return date;
}

std::optional<CLOCK_TIME> read_time(std::string_view text)
{
    // Where only a time can stand it may have points.
    std::string colons(text.substr(0, DATE_LENGTH_MAX));
    std::replace(colons.begin(), colons.end(), '.', ':');
    const std::optional<DATE_PIECES> pieces = pieces_of(colons);
    return pieces && pieces->numbers.empty() && pieces->month == 0 ? pieces->time : std::nullopt;
}

}  // namespace

std::optional<FORM_DATE> read_date(std::string_view text, std::string_view format, const FORM_DATE& today)
{
    const std::string order = date_order(format);
    if (order.empty() && has_time_parts(format)) {
        const std::optional<CLOCK_TIME> time = read_time(text);
        return time ? std::optional(at_time(today, *time)) : std::nullopt;
    }
    const std::optional<DATE_PIECES> pieces = pieces_of(text);
    const std::optional<FORM_DATE> date = pieces ? day_of(*pieces, order, today) : std::nullopt;
    return date && pieces->time ? at_time(*date, *pieces->time) : date;
}

bool is_time_text(std::string_view text, std::string_view format)
{
    const std::optional<CLOCK_TIME> time = read_time(text);
    return time && !(time->has_half && (time->has_seconds || format.find('s') != std::string_view::npos));
}
