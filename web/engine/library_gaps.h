// Parts of C++20's library that the compiler for wasm does not have yet; every source is compiled behind this header. Each does
// what the standard says of the calls that are made here. There is no locale but "C" in wasm, so the C library's numbers will do.
#pragma once

#include <version>

#if _LIBCPP_VERSION < 15000
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

namespace std {

template <typename To, typename From>
constexpr To bit_cast(const From& from)
{
    return __builtin_bit_cast(To, from);
}

namespace ranges {

template <typename Range, typename Test>
bool any_of(Range&& range, Test test)
{
    return std::any_of(std::begin(range), std::end(range), test);
}

template <typename Range, typename Test>
bool all_of(Range&& range, Test test)
{
    return std::all_of(std::begin(range), std::end(range), test);
}

template <typename Range, typename Test>
bool none_of(Range&& range, Test test)
{
    return std::none_of(std::begin(range), std::end(range), test);
}

template <typename Range, typename Value, typename Projection = identity>
auto find(Range&& range, const Value& value, Projection projection = {})
{
    return std::find_if(std::begin(range), std::end(range),
                        [&](const auto& each) { return std::invoke(projection, each) == value; });
}

// Only the usual order is asked for.
struct less_than {};

template <typename Range, typename Projection>
void stable_sort(Range&& range, less_than /*order*/, Projection projection)
{
    std::stable_sort(std::begin(range), std::end(range), [&](const auto& one, const auto& other) {
        return std::invoke(projection, one) < std::invoke(projection, other);
    });
}

template <typename Range, typename Value, typename Projection>
auto lower_bound(Range&& range, const Value& value, less_than /*order*/, Projection projection)
{
    return std::lower_bound(std::begin(range), std::end(range), value, [&](const auto& each, const Value& wanted) {
        return std::invoke(projection, each) < wanted;
    });
}

template <typename Range, typename Value, typename Projection>
auto upper_bound(Range&& range, const Value& value, less_than /*order*/, Projection projection)
{
    return std::upper_bound(std::begin(range), std::end(range), value, [&](const Value& wanted, const auto& each) {
        return wanted < std::invoke(projection, each);
    });
}

template <typename Range, typename Value, typename Projection>
bool binary_search(Range&& range, const Value& value, less_than order, Projection projection)
{
    const auto found = ranges::lower_bound(range, value, order, projection);
    return found != std::end(range) && !(value < std::invoke(projection, *found));
}

}  // namespace ranges

inline to_chars_result print_chars(char* first, char* last, const char* form, int decimals, double value)
{
    char digits[512];
    const int size = snprintf(digits, sizeof digits, form, decimals, value);
    if (size < 0 || size >= static_cast<int>(sizeof digits) || size > last - first)
        return {last, errc::value_too_large};
    return {std::copy(digits, digits + size, first), errc()};
}

inline to_chars_result to_chars(char* first, char* last, double value, chars_format form, int decimals)
{
    return print_chars(first, last, form == chars_format::scientific ? "%.*e" : "%.*f", decimals, value);
}

// The fewest digits that are read as the same number again.
inline to_chars_result to_chars(char* first, char* last, double value, chars_format form)
{
    constexpr int MOST_DECIMALS = 340;
    const int most = form == chars_format::scientific ? 17 : MOST_DECIMALS;
    char digits[512];
    for (int decimals = 0; decimals <= most; ++decimals) {
        const char* pattern = form == chars_format::scientific ? "%.*e" : "%.*f";
        snprintf(digits, sizeof digits, pattern, decimals, value);
        if (strtod(digits, nullptr) == value)
            return print_chars(first, last, pattern, decimals, value);
    }
    return {last, errc::value_too_large};
}

// Reads no sign but "-", no blanks, no other base, "inf" and "nan" neither.
inline from_chars_result from_chars(const char* first, const char* last, double& value,
                                    chars_format form = chars_format::general)
{
    const char* at = first != last && *first == '-' ? first + 1 : first;
    const auto skip = [&] {
        const char* from = at;
        while (at != last && *at >= '0' && *at <= '9')
            ++at;
        return at - from;
    };
    auto count = skip();
    if (at != last && *at == '.') {
        ++at;
        count += skip();
    }
    if (count == 0)
        return {first, errc::invalid_argument};
    const char* end = at;
    if (form != chars_format::fixed && at != last && (*at == 'e' || *at == 'E')) {
        ++at;
        if (at != last && (*at == '+' || *at == '-'))
            ++at;
        if (skip() > 0)
            end = at;
    }
    const string text(first, end);
    const double number = strtod(text.c_str(), nullptr);
    const bool too_large = number > numeric_limits<double>::max() || number < numeric_limits<double>::lowest();
    const bool too_small = number == 0 && text.find_first_of("123456789") < text.find_first_of("eE");
    if (too_large || too_small)
        return {end, errc::result_out_of_range};
    value = number;
    return {end, errc()};
}

}  // namespace std
#endif
