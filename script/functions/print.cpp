#include "script/functions/print.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

#include "script/functions/characters.h"
#include "script/functions/number.h"

namespace {

constexpr int WIDTH_MAX = 1000;

struct CONVERSION {
    NUMBER_SEPARATORS separators = NUMBER_SEPARATORS::POINT;
    bool plus = false;
    bool space = false;
    bool zeros = false;
    bool prefix = false;
    int width = 0;
    int precision = -1;  // none
    char kind = 0;
    size_t length = 0;  // of the whole, with the percent sign
};

// A number of any size, cut to WIDTH_MAX.
int take_number(std::string_view format, size_t& at)
{
    int value = 0;
    for (; at < format.size() && is_digit(format[at]); ++at)
        value = std::min(value * 10 + (format[at] - '0'), WIDTH_MAX);
    return value;
}

bool take_flag(CONVERSION& conversion, char c)
{
    conversion.plus |= c == '+';
    conversion.space |= c == ' ';
    conversion.zeros |= c == '0';
    conversion.prefix |= c == '#';
    return c == '+' || c == ' ' || c == '0' || c == '#';
}

// Reads the conversion that `format` begins with.
std::optional<CONVERSION> read_conversion(std::string_view format)
{
    CONVERSION conversion;
    size_t at = 1;
    if (format.size() > at + 1 && format[at] == ',' && format[at + 1] >= '0' && format[at + 1] <= '4') {
        conversion.separators = static_cast<NUMBER_SEPARATORS>(format[at + 1] - '0');
        at += 2;
    }
    while (at < format.size() && take_flag(conversion, format[at]))
        ++at;
    conversion.width = take_number(format, at);
    if (at < format.size() && format[at] == '.')
        conversion.precision = take_number(format, ++at);
    if (at == format.size() || std::string_view("dfsx").find(format[at]) == std::string_view::npos)
        return std::nullopt;
    conversion.kind = format[at];
    conversion.length = at + 1;
    return conversion;
}

std::string print_hex(double value, const CONVERSION& conversion)
{
    // Negative numbers as 32 bits, as scripts have them.
    const auto bits =
        value < 0 ? uint64_t{static_cast<uint32_t>(static_cast<int64_t>(value))} : static_cast<uint64_t>(value);
    char buffer[16];
    std::string digits(buffer, std::to_chars(buffer, std::end(buffer), bits, 16).ptr);
    for (char& c : digits)
        c = static_cast<char>(upper_of(static_cast<unsigned char>(c)));
    return conversion.prefix ? "0x" + digits : digits;
}

std::string print_number(double value, const CONVERSION& conversion)
{
    if (!std::isfinite(value))
        return "nan";
    if (conversion.kind == 'x')
        return print_hex(std::clamp(value, -2147483648.0, 9007199254740992.0), conversion);
    if (conversion.kind == 'd')
        value = std::trunc(value);
    const int decimals = conversion.kind == 'd' ? 0 : conversion.precision < 0 ? 6 : conversion.precision;
    const std::string sign = value < 0 ? "-" : conversion.plus ? "+" : conversion.space ? " " : "";
    const std::string digits = print_fixed(value, decimals, conversion.separators);
    const size_t used = sign.size() + digits.size();
    const size_t width = conversion.zeros ? static_cast<size_t>(conversion.width) : 0;
    return sign + std::string(width > used ? width - used : 0, '0') + digits;
}

std::string print_value(const SCRIPT_VALUE& value, const CONVERSION& conversion)
{
    std::u32string out;
    if (conversion.kind != 's')
        out = characters_of(print_number(value.number(), conversion));
    else
        out = characters_of(value.text()).substr(0, static_cast<size_t>(conversion.precision));
    const auto width = static_cast<size_t>(conversion.width);
    if (out.size() < width)
        out.insert(0, width - out.size(), ' ');
    return text_of(out);
}

// Takes the characters of a text one after the other, as a mask wants them.
class CPDFMaskPrinter {
public:
    explicit CPDFMaskPrinter(std::string_view text) : m_text(characters_of(text)) {}

    std::string print(std::u32string_view mask)
    {
        bool more = true;
        for (size_t i = 0; more && i < mask.size(); ++i) {
            if (mask[i] == '\\' && i + 1 < mask.size())
                m_literals += mask[++i];
            else
                more = carry_out(mask[i]);
        }
        if (more)
            m_out += m_literals;
        return text_of(m_out);
    }

private:
    // False when the text has no more of what `mask` wants.
    bool carry_out(char32_t mask)
    {
        switch (mask) {
        case '?':
            return copy([](char32_t) { return true; });
        case 'X':
            return copy([](char32_t c) { return is_letter(c) || is_digit(c); });
        case 'A':
            return copy(is_letter);
        case '9':
            return copy(is_digit);
        case '*':
            while (copy([](char32_t) { return true; })) {
            }
            return true;
        case '>':
        case '<':
        case '=':
            m_case = mask;
            return true;
        default:
            m_literals += mask;
            return true;
        }
    }

    bool copy(bool (*is_wanted)(char32_t))
    {
        while (m_at < m_text.size() && !is_wanted(m_text[m_at]))
            ++m_at;
        if (m_at == m_text.size())
            return false;
        const char32_t c = m_text[m_at++];
        m_out += m_literals;
        m_literals.clear();
        m_out += m_case == '>' ? upper_of(c) : m_case == '<' ? lower_of(c) : c;
        return true;
    }

    std::u32string m_text;
    size_t m_at = 0;
    char32_t m_case = '=';
    std::u32string m_literals;  // printed when what stands behind them is
    std::u32string m_out;
};

}  // namespace

std::string print_values(std::string_view format, const SCRIPT_LIST& values)
{
    std::string out;
    size_t next = 0;
    while (!format.empty() && out.size() < PRINT_SIZE_MAX) {
        const bool percent = format[0] == '%' && next < values.size();
        const std::optional<CONVERSION> conversion = percent ? read_conversion(format) : std::nullopt;
        const size_t length = conversion ? conversion->length : 1;
        if (conversion)
            out += print_value(values[next++], *conversion);
        else
            out += format[0];
        format.remove_prefix(length);
    }
    return out;
}

std::string print_by_mask(std::string_view mask, std::string_view text)
{
    return CPDFMaskPrinter(text).print(characters_of(mask.substr(0, PRINT_SIZE_MAX)));
}
