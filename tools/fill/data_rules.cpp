#include "tools/fill/data_rules.h"

#include <CLI/CLI.hpp>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/xfa/data_value.h"
#include "formats/field_cells.h"

namespace {

// The character that a word of the command line means; 0 for none.
char delimiter_of(const std::string& word)
{
    constexpr std::pair<std::string_view, char> WORDS[] = {
        {"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}, {"\\t", '\t'}};
    for (const auto& [name, character] : WORDS) {
        if (word == name)
            return character;
    }
    const bool divides = word.size() == 1 && static_cast<unsigned char>(word[0]) < 0x80 && word[0] != '"' &&
                         word[0] != '\r' && word[0] != '\n';
    return divides ? word[0] : '\0';
}

}  // namespace

void add_data_options(CLI::App& verb, DATA_ARGUMENTS& arguments)
{
    verb.add_option("--delimiter", arguments.delimiter,
                    "what divides the cells of CSV: a character, comma, semicolon or tab; found by itself")
        ->option_text("CHARACTER");
    verb.add_option("--list-separator", arguments.list_separator,
                    "what separates the values of a cell for a field that takes several (|); '' for nothing")
        ->option_text("TEXT");
    verb.add_option("--empty", arguments.empty, "what an empty cell does to its field: keep (so by default) or clear")
        ->option_text("keep|clear");
    verb.add_option("--map", arguments.map, "a .json file that says which column is for which field")
        ->option_text("MAP");
    verb.add_flag("--ignore-unknown", arguments.ignore_unknown, "pass over columns and names that no field has");
}

bool is_known_name(CPDFDocument& document, const std::string& name)
{
    if (document.field(name))
        return true;
    std::vector<CPDFStatus> each;
    return document.has_only_xfa() && document.check_xfa_values({{name, ""}}, PDF_FILL::FORCE, each).ok() &&
           each[0].ok();
}

CPDFStatus DataRules::set(const DATA_ARGUMENTS& arguments)
{
    const std::string& delimiter = arguments.delimiter.text;
    m_style.delimiter = delimiter_of(delimiter);
    if (!delimiter.empty() && m_style.delimiter == '\0')
        return wrong_usage(in_quotes(delimiter) + " is no delimiter: give a character, comma, semicolon or tab");
    const std::string& empty = arguments.empty.text;
    if (empty != "keep" && empty != "clear")
        return wrong_usage("--empty is keep or clear, not " + in_quotes(empty));
    m_style.keeps_empty_cells = empty == "clear";
    m_list_separator = arguments.list_separator.text;
    m_ignores_unknown = arguments.ignore_unknown;
    return {};
}

bool DataRules::open(const DATA_ARGUMENTS& arguments)
{
    if (arguments.map.text.empty())
        return true;
    const CPDFStatus status = m_map.open(arguments.map.text);
    if (!status.ok())
        complain(arguments.map.text, status.text);
    return status.ok();
}

CPDFStatus DataRules::shape(CPDFDocument& document, CPDFFormData& data) const
{
    CPDFStatus status = m_map.apply(data);
    fit(document, data);
    return status;
}

void DataRules::fit(CPDFDocument& document, CPDFFormData& data) const
{
    if (m_ignores_unknown)
        std::erase_if(data, [&](const PDF_FORM_ENTRY& entry) { return !is_known_name(document, entry.name); });
    fit_cells(document, m_list_separator, data);
}
