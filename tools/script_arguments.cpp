#include "tools/script_arguments.h"

#include <CLI/CLI.hpp>

#include "document/lookup/field_text.h"

void add_scripts(CLI::App& verb, SCRIPT_ARGUMENTS& arguments)
{
    verb.add_option("--scripts", arguments.word,
                    "which scripts of the form run: known (the usual formats,\nchecks and "
                    "calculations) or off; known by default")
        ->option_text("WHICH");
}

CPDFStatus check_scripts(SCRIPT_ARGUMENTS& arguments)
{
    const std::string& word = arguments.word.text;
    if (word != "known" && word != "off")
        return wrong_usage("--scripts takes known or off, not " + in_quotes(word));
    arguments.scripts = word == "off" ? PDF_SCRIPTS::OFF : PDF_SCRIPTS::KNOWN;
    return {};
}

void note_scripts(const CPDFDocument& document, const COMMAND_INPUT& input)
{
    for (const std::string& note : document.calculation_notes())
        complain(input.path.text, "note: " + note);
    note_skipped_scripts(document.skipped_scripts(), input);
}

void note_skipped_scripts(size_t count, const COMMAND_INPUT& input)
{
    if (count == 1)
        complain(input.path.text, "note: 1 script was not run (formwork actions shows it)");
    else if (count > 1)
        complain(input.path.text,
                 "note: " + std::to_string(count) + " scripts were not run (formwork actions shows them)");
}
