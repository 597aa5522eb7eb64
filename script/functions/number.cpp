#include "script/functions/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "script/functions/characters.h"

namespace {

struct SEPARATOR_PAIR {
    char thousands;  // 0: none
    char decimals;
};

constexpr SEPARATOR_PAIR SEPARATORS[] = {{',', '.'}, {0, '.'}, {'.', ','}, {0, ','}, {'\'', '.'}};

size_t skip_digits(std::string_view text, size_t at)
{
    while (at < text.size() && is_digit(text[at]))
        ++at;
    return at;
}

size_t skip_sign(std::string_view text, size_t at)
{
    return at < text.size() && (text[at] == '+' || text[at] == '-') ? at + 1 : at;
}

// Where an exponent that begins at `at` ends; `at` when there is none.
size_t skip_exponent(std::string_view text, size_t at)
{
    if (at >= text.size() || lower_of(text[at]) != 'e')
        return at;
    const size_t digits = skip_sign(text, at + 1);
    const size_t end = skip_digits(text, digits);
    return end == digits ? at : end;
}

// A sign, digits, and digits behind one of `points`, from the start of a text.
struct NUMBER_SPAN {
    size_t point;   // where the point is, or the end
    size_t end;     // behind the last digit or the point
    size_t digits;  // how many
};

NUMBER_SPAN span_number(std::string_view text, std::string_view points)
{
    const size_t begin = skip_sign(text, 0);
    NUMBER_SPAN span{};
    span.point = span.end = skip_digits(text, begin);
    span.digits = span.end - begin;
    if (span.end < text.size() && points.find(text[span.end]) != std::string_view::npos) {
        span.end = skip_digits(text, span.point + 1);
        span.digits += span.end - span.point - 1;
    }
    return span;
}

// Whether all of `text` has the form of a number, whatever its size.
bool is_spelled_number(std::string_view text)
{
    const NUMBER_SPAN span = span_number(text, ".,");
    return span.digits > 0 && skip_exponent(text, span.end) == text.size();
}

// Reads what the standard library reads, which is no sign, and a point.
std::optional<double> read_plain(const std::string& text)
{
    double value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string_view points_of(NUMBER_SEPARATORS separators)
{
    return SEPARATORS[static_cast<int>(separators)].decimals == ',' ? ".," : ".";
}

// The runs of digits and what stands between them.
struct DIGIT_RUNS {
    std::vector<std::string_view> digits;
    std::vector<std::string_view> between;  // one less
};

DIGIT_RUNS digit_runs(std::string_view text)
{
    DIGIT_RUNS runs;
    for (size_t at = 0, last = 0; at < text.size();) {
        if (!is_digit(text[at])) {
            ++at;
            continue;
        }
        const size_t end = skip_digits(text, at);
        if (!runs.digits.empty())
            runs.between.push_back(text.substr(last, at - last));
        runs.digits.push_back(text.substr(at, end - at));
        at = last = end;
    }
    return runs;
}

bool has_thousands(const DIGIT_RUNS& runs)
{
    const auto last = runs.between.end() - 1;
    return *last != runs.between.front() &&
           std::all_of(runs.between.begin(), last, [&](std::string_view s) { return s == runs.between.front(); });
}

// Adds one to the last place of a decimal number.
void round_up(std::string& digits)
{
    for (size_t i = digits.size(); i-- > 0;) {
        if (digits[i] == '.')
            continue;
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

// The library rounds halves to even, scripts up. So it prints more places, which are then cut; near half of any place that
// is asked for, doubles lie further apart than the last of them.
std::string fixed_digits(double value, int decimals)
{
    constexpr int MORE = 25;
    char buffer[400];
    const char* end = std::to_chars(buffer, std::end(buffer), value, std::chars_format::fixed, decimals + MORE).ptr;
    std::string digits(buffer, static_cast<size_t>(end - buffer - MORE));
    const bool up = end[-MORE] >= '5';
    if (digits.back() == '.')
        digits.pop_back();
    if (up)
        round_up(digits);
    return digits;
}

}  // namespace

std::optional<double> read_number(std::string_view text)
{
    text = trimmed(text);
    if (!is_spelled_number(text))
        return std::nullopt;
    std::string plain(text.substr(skip_sign(text, 0)));
    std::replace(plain.begin(), plain.end(), ',', '.');
    const std::optional<double> value = read_plain(plain);
    return value && text[0] == '-' ? -*value : value;
}

std::vector<std::string> extract_numbers(std::string_view text)
{
    std::vector<std::string> out;
    if (!text.empty() && (text[0] == '.' || text[0] == ','))
        out.emplace_back("0");
    const DIGIT_RUNS runs = digit_runs(text);
    if (runs.digits.empty())
        return {};
    out.insert(out.end(), runs.digits.begin(), runs.digits.end());
    return out;
}

std::optional<double> make_number(std::string_view text)
{
    if (is_spelled_number(trimmed(text)))
        return read_number(text);
    const DIGIT_RUNS runs = digit_runs(text);
    const size_t count = runs.digits.size();
    if (count == 0 || (count > 2 && !has_thousands(runs)))
        return std::nullopt;
    std::string plain;
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 && i + 1 == count)
            plain += '.';
        plain += runs.digits[i];
    }
    const std::optional<double> value = read_plain(plain);
    const bool negative = text.substr(0, text.find_first_of("0123456789")).find('-') != std::string_view::npos;
    return value && negative ? -*value : value;
}

bool is_number_text(std::string_view text, NUMBER_SEPARATORS separators)
{
    text = trimmed(text);
    const NUMBER_SPAN span = span_number(text, points_of(separators));
    return span.digits > 0 && span.end == text.size();
}

bool is_number_start(std::string_view text, NUMBER_SEPARATORS separators)
{
    return span_number(text, points_of(separators)).end == text.size();
}

std::string print_fixed(double value, int decimals, NUMBER_SEPARATORS separators)
{
    decimals = std::clamp(decimals, 0, NUMBER_DECIMALS_MAX);
    std::string digits = fixed_digits(std::fabs(value), decimals);
    const SEPARATOR_PAIR pair = SEPARATORS[static_cast<int>(separators)];
    const size_t whole = decimals ? digits.size() - static_cast<size_t>(decimals) - 1 : digits.size();
    if (decimals)
        digits[whole] = pair.decimals;
    if (pair.thousands)
        for (size_t at = whole; at > 3;)
            digits.insert(at -= 3, 1, pair.thousands);
    return digits;
}

std::string print_number(double value)
{
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value < 0 ? "-Infinity" : "Infinity";
    if (value == 0)
        return "0";
    const double size = std::fabs(value);
    char buffer[64];
    const bool plain = size >= 1e-6 && size < 1e21;
    const auto form = plain ? std::chars_format::fixed : std::chars_format::scientific;
    std::string out(buffer, std::to_chars(buffer, std::end(buffer), value, form).ptr);
    // Scripts write an exponent without leading zeros.
    const size_t exponent = plain ? std::string::npos : out.find('e') + 2;
    if (!plain && out[exponent] == '0')
        out.erase(exponent, 1);
    return out;
}
