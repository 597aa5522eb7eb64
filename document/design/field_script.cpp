#include "document/design/field_script.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

// A literal of JavaScript.
std::string quoted(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        if (c == '\n' || c == '\r')
            out += c == '\n' ? "\\n" : "\\r";
        else
            out += c;
    }
    return out + "\"";
}

// Takes what stands before the first ':' off `words`.
std::string next_word(std::string& words)
{
    const size_t colon = words.find(':');
    std::string word = words.substr(0, colon);
    words = colon == std::string::npos ? "" : words.substr(colon + 1);
    return word;
}

bool read_decimals(const std::string& word, int& out)
{
    constexpr int MOST = 10;
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, out);
    return result.ec == std::errc() && result.ptr == end && out >= 0 && out <= MOST;
}

// How a number is to look: separators by the number that scripts give them, and what stands around it.
struct NUMBER_SAMPLE {
    int separators = 0;
    std::string before;
    std::string after;
};

bool read_sample(const std::string& sample, NUMBER_SAMPLE& out)
{
    constexpr const char* SAMPLES[] = {"1,234.56", "1234.56", "1.234,56", "1234,56", "1'234.56"};
    constexpr const char* DIGITS = "0123456789";
    if (sample.empty())
        return true;
    const size_t begin = sample.find_first_of(DIGITS);
    const size_t end = sample.find_last_of(DIGITS);
    if (begin == std::string::npos)
        return false;
    out.before = sample.substr(0, begin);
    out.after = sample.substr(end + 1);
    for (const char* known : SAMPLES) {
        if (sample.substr(begin, end + 1 - begin) == known)
            return out.before.empty() || out.after.empty();
        ++out.separators;
    }
    return false;
}

// AFNumber_Format(decimals, separators, negative style, unused, currency, whether it stands before), and
// AFPercent_Format(decimals, separators).
bool read_number_format(const std::string& kind, std::string words, PDF_FIELD_FORMAT& out)
{
    int decimals = 0;
    NUMBER_SAMPLE sample;
    if (!read_decimals(next_word(words), decimals) || !read_sample(words, sample))
        return false;
    std::string arguments = "(" + std::to_string(decimals) + ", " + std::to_string(sample.separators);
    const bool percent = kind == "percent";
    if (percent && !(sample.before + sample.after).empty())
        return false;
    if (!percent)
        arguments += ", 0, 0, " + quoted(sample.before + sample.after) + (sample.after.empty() ? ", true" : ", false");
    const std::string name = percent ? "AFPercent_" : "AFNumber_";
    out = {name + "Keystroke" + arguments + ");", name + "Format" + arguments + ");"};
    return true;
}

bool read_special_format(const std::string& word, PDF_FIELD_FORMAT& out)
{
    constexpr const char* FORMS[] = {"zip", "zip4", "phone", "ssn"};
    int number = 0;
    for (const char* form : FORMS) {
        const std::string arguments = "(" + std::to_string(number++) + ");";
        if (word == form)
            out = {"AFSpecial_Keystroke" + arguments, "AFSpecial_Format" + arguments};
    }
    return !out.format.empty();
}

// Whether all letters of a pattern are among those `known`, but for what stands behind a backslash, and one at least is
// of those that the pattern `needs`.
bool is_pattern(std::string_view text, std::string_view known, std::string_view needs)
{
    bool any = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool is_letter = (text[i] >= 'A' && text[i] <= 'Z') || (text[i] >= 'a' && text[i] <= 'z');
        if (is_letter && known.find(text[i]) == std::string_view::npos)
            return false;
        any = any || needs.find(text[i]) != std::string_view::npos;
        i += text[i] == '\\';
    }
    return any;
}

}  // namespace

bool read_format(const std::string& words, PDF_FIELD_FORMAT& out)
{
    out = {};
    std::string rest = words;
    const std::string kind = next_word(rest);
    if (kind == "number" || kind == "percent")
        return read_number_format(kind, rest, out);
    if (kind == "special")
        return read_special_format(rest, out);
    if ((kind == "date" && is_pattern(rest, "dmyHhMst", "dmy")) ||
        (kind == "time" && is_pattern(rest, "HhMst", "HhMs"))) {
        const std::string name = kind == "date" ? "AFDate_" : "AFTime_";
        const std::string arguments = "(" + quoted(rest) + ");";
        out = {name + "KeystrokeEx" + arguments, name + "FormatEx" + arguments};
        return true;
    }
    if (kind == "mask" && rest.find_first_of("9AOX") != std::string::npos) {
        out.keystroke = "AFSpecial_KeystrokeEx(" + quoted(rest) + ");";
        return true;
    }
    return words == "none";
}

bool read_calculation(const std::string& words, PDF_CALCULATION& out)
{
    constexpr std::pair<const char*, const char*> FUNCTIONS[] = {
        {"sum", "SUM"}, {"average", "AVG"}, {"product", "PRD"}, {"minimum", "MIN"}, {"maximum", "MAX"}};
    out = {};
    if (words == "none")
        return true;
    std::string rest = words;
    const std::string word = next_word(rest);
    for (const auto& [known, function] : FUNCTIONS) {
        if (word == known)
            out.function = function;
    }
    for (size_t begin = 0; begin <= rest.size();) {
        const size_t end = std::min(rest.find(',', begin), rest.size());
        if (end == begin)
            return false;
        out.fields.push_back(rest.substr(begin, end - begin));
        begin = end + 1;
    }
    return !out.function.empty();
}

std::string calculation_script(const std::string& function, const std::vector<std::string>& fields)
{
    std::string names;
    for (const std::string& field : fields)
        names += (names.empty() ? "" : ", ") + quoted(field);
    return "AFSimple_Calculate(" + quoted(function) + ", new Array(" + names + "));";
}
