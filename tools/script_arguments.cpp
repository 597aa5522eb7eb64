#include "tools/script_arguments.h"

#include <CLI/CLI.hpp>

#include "document/lookup/field_text.h"
#include "document/notes.h"
#include "script/functions/number.h"

void add_scripts(CLI::App& verb, SCRIPT_ARGUMENTS& arguments)
{
    verb.add_option("--scripts", arguments.word,
                    "which scripts of the form run: known (the usual formats,\nchecks and "
                    "calculations), all (the others, too, in a sandbox) or off; known by default")
        ->option_text("known|all|off");
    verb.add_option("--script-seconds", arguments.time,
                    "processor time for the scripts of a file, or of a row, that all runs; 2 by default")
        ->option_text("N");
    verb.add_flag("--verbose", arguments.verbose, "say on standard error what scripts print (console.println)");
}

CPDFStatus check_scripts(SCRIPT_ARGUMENTS& arguments)
{
    const std::string& word = arguments.word.text;
    if (word != "known" && word != "off" && word != "all")
        return wrong_usage("--scripts takes known, all or off, not " + in_quotes(word));
    arguments.seconds = read_number(arguments.time.text).value_or(0);
    if (!(arguments.seconds >= 0.01 && arguments.seconds <= 3600))
        return wrong_usage("--script-seconds takes a number from 0.01 to 3600, not " + in_quotes(arguments.time.text));
    arguments.scripts = word == "off" ? PDF_SCRIPTS::OFF : word == "all" ? PDF_SCRIPTS::ALL : PDF_SCRIPTS::KNOWN;
    return {};
}

void set_up(CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const OUTPUT_ARGUMENTS& output)
{
    document.set_scripts(arguments.scripts, arguments.seconds);
    document.set_drawing(output.drawing());
}

CPDFStatus save_computed(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& output,
                         const SCRIPT_ARGUMENTS& arguments)
{
    CPDFStatus status = save_output(document, input, output);
    if (status.ok())
        note_scripts(document, arguments, input);
    return status;
}

void note_script_run(const CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const COMMAND_INPUT& input)
{
    for (const std::string& line : arguments.verbose ? document.script_console() : std::vector<std::string>())
        complain(input.path.text, "console: " + line);
    for (const std::string& note : document.calculation_notes())
        complain(input.path.text, "note: " + note);
}

void note_scripts(const CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const COMMAND_INPUT& input)
{
    note_script_run(document, arguments, input);
    note_skipped_scripts(document.skipped_scripts(), input);
}

void note_skipped_scripts(size_t count, const COMMAND_INPUT& input)
{
    if (count > 0)
        put_note(input, skipped_scripts_note(count) + " (formwork actions shows " + (count == 1 ? "it)" : "them)"));
}
