#include "tools/fill/data_options.h"

#include <CLI/CLI.hpp>

#include "document/lookup/field_text.h"

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

CPDFStatus read_rules(const DATA_ARGUMENTS& arguments, PDF_DATA_RULES& rules)
{
    const std::string& delimiter = arguments.delimiter.text;
    rules.style.delimiter = delimiter_of(delimiter);
    if (!delimiter.empty() && rules.style.delimiter == '\0')
        return wrong_usage(in_quotes(delimiter) + " is no delimiter: give a character, comma, semicolon or tab");
    const std::string& empty = arguments.empty.text;
    if (empty != "keep" && empty != "clear")
        return wrong_usage("--empty is keep or clear, not " + in_quotes(empty));
    rules.style.keeps_empty_cells = empty == "clear";
    rules.list_separator = arguments.list_separator.text;
    rules.unknown = arguments.ignore_unknown ? PDF_UNKNOWN_NAMES::IGNORE : PDF_UNKNOWN_NAMES::REFUSE;
    return {};
}

bool open_rules(const DATA_ARGUMENTS& arguments, PDF_DATA_RULES& rules)
{
    const std::string& map = arguments.map.text;
    if (!read_rules(arguments, rules).ok())
        return false;
    const CPDFStatus status = map.empty() ? CPDFStatus() : rules.map.open(map);
    if (!status.ok())
        complain(map, status.text);
    return status.ok();
}
