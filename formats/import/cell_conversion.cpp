#include "formats/import/cell_conversion.h"

#include <clocale>
#include <cwctype>
#include <optional>

#include "document/lookup/field_text.h"
#include "script/functions/characters.h"
#include "script/functions/date_reader.h"
#include "script/functions/number.h"

namespace {

// Numbers with more digits are not kept to the last one by a double.
constexpr size_t DIGITS_MAX = 15;

struct NUMBER_STYLE {
    std::string_view example;
    NUMBER_SEPARATORS separators;
    char thousands;  // 0: none
    char point;
};

constexpr NUMBER_STYLE STYLES[] = {
    {"1,234.56", NUMBER_SEPARATORS::COMMA_POINT, ',', '.'},       {"1234.56", NUMBER_SEPARATORS::POINT, 0, '.'},
    {"1.234,56", NUMBER_SEPARATORS::POINT_COMMA, '.', ','},       {"1234,56", NUMBER_SEPARATORS::COMMA, 0, ','},
    {"1'234.56", NUMBER_SEPARATORS::APOSTROPHE_POINT, '\'', '.'},
};

const NUMBER_STYLE* style_of(std::string_view example)
{
    for (const NUMBER_STYLE& style : STYLES) {
        if (style.example == example)
            return &style;
    }
    return nullptr;
}

CPDFStatus failure(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(sentence));
}

bool is_whole_date(const std::string& format)
{
    return date_order(format).size() == 3;
}

// Dates are read in many spellings: the numbers of the text must be those that the format would have in their places.
bool has_date(std::string_view text, const FORM_DATE& date, const std::string& format)
{
    const std::vector<std::string> there = extract_numbers(text);
    const std::vector<std::string> meant = extract_numbers(print_date(date, format));
    if (there.size() != meant.size())
        return false;
    for (size_t i = 0; i < there.size(); ++i) {
        if (read_number(there[i]) != read_number(meant[i]))
            return false;
    }
    return true;
}

CPDFStatus convert_date(const PDF_CELL_CONVERSION& conversion, std::string& text)
{
    const std::optional<FORM_DATE> date = read_date(text, conversion.from, FORM_DATE());
    if (!date || !has_date(text, *date, conversion.from))
        return failure(in_quotes(text) + " is no date " + conversion.from);
    text = print_date(*date, conversion.to);
    return {};
}

// `text` with a point and no thousands; empty when it is no number of that style.
std::string plain_number(std::string_view text, const NUMBER_STYLE& style)
{
    std::string plain;
    for (const char c : text) {
        if (c == '.' && style.point != '.' && style.thousands != '.')
            return "";
        if (c != style.thousands || style.thousands == 0)
            plain += c == style.point ? '.' : c;
    }
    return is_number_text(plain, NUMBER_SEPARATORS::POINT) ? plain : "";
}

CPDFStatus convert_number(const PDF_CELL_CONVERSION& conversion, std::string& text)
{
    const NUMBER_STYLE& from = *style_of(conversion.from);
    const std::string_view number = trimmed(text);
    const std::string plain = plain_number(number, from);
    const double value = read_number(plain).value_or(0);
    const size_t point = plain.find('.');
    const int decimals = point == std::string::npos ? 0 : static_cast<int>(plain.size() - point - 1);
    // Thousands that are not separated everywhere are those of another style.
    const bool is_even =
        plain.size() == number.size() || number.ends_with(print_fixed(value, decimals, from.separators));
    if (plain.empty() || !is_even)
        return failure(in_quotes(text) + " is no number such as " + conversion.from);
    if (plain.size() > DIGITS_MAX)
        return failure(in_quotes(text) + " has too many digits to be converted");
    text = (value < 0 ? "-" : "") + print_fixed(value, decimals, style_of(conversion.to)->separators);
    return {};
}

// Capital letters of all scripts, whatever language the machine is set to.
void convert_upper(std::string& text)
{
    static const locale_t letters = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::string upper;
    for (const char32_t c : characters_of(text))
        append_character(upper,
                         letters ? static_cast<char32_t>(::towupper_l(static_cast<wint_t>(c), letters)) : upper_of(c));
    text = std::move(upper);
}

}  // namespace

CPDFStatus make_conversion(const std::string& name, const std::string& pair, PDF_CELL_CONVERSION& out)
{
    out = {PDF_CELL_CONVERSION::UPPER, "", ""};
    if (name == "upper")
        return {};
    if (name != "date" && name != "number")
        return failure("there is no conversion " + in_quotes(name) + ": it is date, number or upper");
    const size_t arrow = pair.find('>');
    out.kind = name == "date" ? PDF_CELL_CONVERSION::DATE : PDF_CELL_CONVERSION::NUMBER;
    out.from = pair.substr(0, arrow);
    out.to = arrow == std::string::npos ? "" : pair.substr(arrow + 1);
    if (out.kind == PDF_CELL_CONVERSION::DATE && !(is_whole_date(out.from) && is_whole_date(out.to)))
        return failure(in_quotes(pair) + " are not two formats with day, month and year, such as "
                                         "dd.mm.yyyy>mm/dd/yyyy");
    if (out.kind == PDF_CELL_CONVERSION::NUMBER && !(style_of(out.from) && style_of(out.to)))
        return failure(in_quotes(pair) +
                       " are not two of 1,234.56 1234.56 1.234,56 1234,56 1'234.56, such as 1.234,56>1234.56");
    return {};
}

CPDFStatus convert_cell(const PDF_CELL_CONVERSION& conversion, std::string& text)
{
    if (text.empty())
        return {};
    if (conversion.kind == PDF_CELL_CONVERSION::DATE)
        return convert_date(conversion, text);
    if (conversion.kind == PDF_CELL_CONVERSION::NUMBER)
        return convert_number(conversion, text);
    convert_upper(text);
    return {};
}
