#include "document/xfa/xfa_date.h"

#include <algorithm>
#include <array>

// picture = alternative *( "|" alternative ); alternative = "date" [ "(" locale ")" ] "{" *( symbol / character ) "}"
// symbol = "YYYY" / "YY" / "MMMM" / "MMM" / "MM" / "M" / "DD" / "D"

namespace {

constexpr size_t NONE = std::string_view::npos;

// Moves `picture` behind its first alternative and hands out what that has in braces; empty for one that is no date's.
std::string_view cut_alternative(std::string_view& picture)
{
    const size_t bar = std::min(picture.find('|'), picture.size());
    std::string_view one = picture.substr(0, bar);
    picture.remove_prefix(std::min(bar + 1, picture.size()));
    const size_t open = one.find('{');
    const size_t close = one.rfind('}');
    if (one.substr(0, 4) != "date" || open == NONE || close == NONE || close < open)
        return {};
    return one.substr(open + 1, close - open - 1);
}

bool is_symbol(char c)
{
    return c == 'Y' || c == 'M' || c == 'D';
}

std::string_view cut_symbol(std::string_view& picture)
{
    const size_t size = std::min(picture.find_first_not_of(picture[0]), picture.size());
    const std::string_view symbol = picture.substr(0, size);
    picture.remove_prefix(size);
    return symbol;
}

// One or two digits for a symbol of one letter, else as many as it has letters.
bool cut_number(std::string_view& text, size_t letters, int& out)
{
    const size_t most = std::max<size_t>(letters, 2);
    size_t size = 0;
    out = 0;
    for (; size < most && size < text.size() && text[size] >= '0' && text[size] <= '9'; ++size)
        out = out * 10 + (text[size] - '0');
    text.remove_prefix(size);
    return letters == 1 ? size > 0 : size == most;
}

bool cut_month(std::string_view& text, bool whole, int& out)
{
    constexpr std::array<std::string_view, 12> MONTHS = {"January",   "February", "March",    "April",
                                                         "May",       "June",     "July",     "August",
                                                         "September", "October",  "November", "December"};
    for (size_t i = 0; i < MONTHS.size(); ++i) {
        const std::string_view word = whole ? MONTHS[i] : MONTHS[i].substr(0, 3);
        if (text.substr(0, word.size()) != word)
            continue;
        text.remove_prefix(word.size());
        out = static_cast<int>(i) + 1;
        return true;
    }
    return false;
}

bool read_one(std::string_view picture, std::string_view text, XFA_DATE& date)
{
    constexpr int PIVOT = 30;  // two digits of a year below it are of this century
    date = {};
    while (!picture.empty()) {
        if (!is_symbol(picture[0])) {
            if (text.empty() || text[0] != picture[0])
                return false;
            picture.remove_prefix(1);
            text.remove_prefix(1);
            continue;
        }
        const std::string_view symbol = cut_symbol(picture);
        int& part = symbol[0] == 'Y' ? date.year : symbol[0] == 'M' ? date.month : date.day;
        const bool is_word = symbol[0] == 'M' && symbol.size() > 2;
        if (!(is_word ? cut_month(text, symbol.size() > 3, part) : cut_number(text, symbol.size(), part)))
            return false;
        if (symbol == "YY")
            part += part < PIVOT ? 2000 : 1900;
    }
    return text.empty() && date.year > 0 && date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31;
}

}  // namespace

bool read_xfa_date(std::string_view picture, std::string_view text, XFA_DATE& date)
{
    while (!picture.empty()) {
        const std::string_view one = cut_alternative(picture);
        if (!one.empty() && read_one(one, text, date))
            return true;
    }
    return false;
}

std::string write_xfa_date(std::string_view picture, const XFA_DATE& date)
{
    std::string_view one = cut_alternative(picture);
    std::string out;
    while (!one.empty()) {
        if (!is_symbol(one[0])) {
            out += one[0];
            one.remove_prefix(1);
            continue;
        }
        const std::string_view symbol = cut_symbol(one);
        std::string digits = std::to_string(symbol[0] == 'Y' ? date.year : symbol[0] == 'M' ? date.month : date.day);
        if (symbol.size() > 2 && symbol[0] != 'Y')
            return {};
        if (digits.size() < symbol.size())
            digits.insert(0, symbol.size() - digits.size(), '0');
        out += symbol == "YY" ? digits.substr(digits.size() - 2) : digits;
    }
    return out;
}
