#include "formats/design/design_words.h"

#include <charconv>

#include "document/lookup/field_text.h"

namespace {

// A word that stands for a value.
template <typename T>
struct NAMED {
    const char* word;
    T value;
};

template <typename T, size_t Size>
bool find_word(const NAMED<T> (&table)[Size], const std::string& word, std::optional<T>& out)
{
    for (const NAMED<T>& at : table) {
        if (word == at.word)
            out = at.value;
    }
    return out.has_value();
}

constexpr NAMED<PDF_ALIGNMENT> ALIGNMENTS[] = {
    {"left", PDF_ALIGNMENT::LEFT}, {"center", PDF_ALIGNMENT::CENTER}, {"right", PDF_ALIGNMENT::RIGHT}};
constexpr NAMED<PDF_BORDER_STYLE> BORDERS[] = {{"solid", PDF_BORDER_STYLE::SOLID},
                                               {"dashed", PDF_BORDER_STYLE::DASHED},
                                               {"beveled", PDF_BORDER_STYLE::BEVELED},
                                               {"inset", PDF_BORDER_STYLE::INSET},
                                               {"underline", PDF_BORDER_STYLE::UNDERLINE}};
constexpr NAMED<const char*> MARKS[] = {{"check", "4"},   {"circle", "l"}, {"cross", "8"},
                                        {"diamond", "u"}, {"square", "n"}, {"star", "H"}};
constexpr NAMED<unsigned> COLORS[] = {{"black", 0},      {"white", 0xFFFFFF}, {"gray", 0x808080},  {"red", 0xFF0000},
                                      {"green", 0x8000}, {"blue", 0xFF},      {"yellow", 0xFFFF00}};

bool read_color(const std::string& word, std::optional<PDF_FIELD_COLOR>& out)
{
    constexpr size_t DIGITS = 6;
    if (word == "none") {
        out.emplace();
        return true;
    }
    std::optional<unsigned> rgb;
    unsigned number = 0;
    const char* end = word.data() + word.size();
    if (word.size() == DIGITS + 1 && word[0] == '#' && std::from_chars(word.data() + 1, end, number, 16).ptr == end)
        rgb = number;
    else if (!find_word(COLORS, word, rgb))
        return false;
    for (const unsigned shift : {16U, 8U, 0U})
        out.emplace(out.value_or(PDF_FIELD_COLOR())).push_back((*rgb >> shift & 0xFF) / 255.0);
    return true;
}

bool read_text(const std::string& word, std::optional<std::string>& out)
{
    out = word;
    return is_utf8(word);
}

bool read_size(const std::string& word, std::optional<double>& out)
{
    double points = 0;
    const bool good = word == "auto" || read_points(word, points);
    out = points;
    return good;
}

constexpr const char* COLOR_WORDS = "a colour: #RRGGBB, a name such as red or gray, or none";
constexpr const char* NUMBER_WORDS = "a number of points";

constexpr PDF_DESIGN_WORD WORDS[] = {
    {"label", "what people are told that the field is, also by screen readers", "TEXT", "UTF-8",
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_text(word, design.label); }},
    {"mapping-name", "its name in exported data", "NAME", "UTF-8",
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_text(word, design.mapping_name); }},
    {"font", "of the form's, of the standard 14 such as Times-Bold, or a font file to embed", "FONT", "UTF-8",
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_text(word, design.style.font); }},
    {"font-size", "in points, or auto, which fits the text", "N", "a number of points or auto",
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_size(word, design.style.size); }, true},
    {"color", "of texts and marks: #RRGGBB or a name", "COLOR", COLOR_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return word != "none" && read_color(word, design.style.color);
     }},
    {"align", "text, combo and list: left, center or right", "WHERE", "left, center or right",
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return find_word(ALIGNMENTS, word, design.style.alignment);
     }},
    {"background", "as --color, or none", "COLOR", COLOR_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_color(word, design.style.background); }},
    {"border-color", "as --color, or none", "COLOR", COLOR_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_color(word, design.style.border_color); }},
    {"border-width", "in points", "N", NUMBER_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return read_points(word, design.style.border_width.emplace());
     },
     true},
    {"border-style", "solid, dashed, beveled, inset or underline", "STYLE",
     "solid, dashed, beveled, inset or underline",
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return find_word(BORDERS, word, design.style.border_style);
     }},
    {"caption", "push button: what it says", "TEXT", "UTF-8",
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_text(word, design.style.caption); }},
    {"action", "push button: submit:URL, reset, print, link:URL or none", "WHAT", ACTION_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) { return read_action(word, design.action.emplace()); }},
    {"format", "text, combo: number:2, percent:1, date:mm/dd/yyyy, time:HH:MM, special:phone, mask:999-AA or none",
     "HOW", FORMAT_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return is_utf8(word) && read_format(word, design.format.emplace());
     }},
    {"calculate", "text, combo: sum:a,b; also average, product, minimum, maximum; or none", "HOW", CALCULATION_WORDS,
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         return is_utf8(word) && read_calculation(word, design.calculation.emplace());
     }},
    {"mark", "check box, radio group: check, circle, cross, diamond, square or star", "MARK",
     "check, circle, cross, diamond, square or star",
     [](const std::string& word, PDF_FIELD_DESIGN& design) {
         std::optional<const char*> code;
         if (find_word(MARKS, word, code))
             design.style.caption = *code;
         return code.has_value();
     }},
};

}  // namespace

std::span<const PDF_DESIGN_WORD> design_words()
{
    return WORDS;
}

CPDFStatus read_design_word(const PDF_DESIGN_WORD& at, const std::string& name, const std::string& word,
                            PDF_FIELD_DESIGN& design)
{
    if (at.read(word, design))
        return {};
    return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, name + ": " + in_quotes(word) + " is not " + at.wanted);
}

bool read_points(const std::string& text, double& out)
{
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, out, std::chars_format::fixed);
    return result.ec == std::errc() && result.ptr == end && out >= 0 && out <= 1e6;
}
