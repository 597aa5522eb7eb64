#include <CLI/CLI.hpp>
#include <memory>

#include "tools/save_output.h"
#include "tools/script_arguments.h"
#include "tools/verb.h"

namespace {

struct CALCULATE_ARGUMENTS {
    COMMAND_INPUT input;
    OUTPUT_ARGUMENTS output;
    SCRIPT_ARGUMENTS scripts;
};

int calculate(CALCULATE_ARGUMENTS& arguments)
{
    CPDFStatus status = check_output(arguments.input, arguments.output);
    if (status.ok())
        status = check_scripts(arguments.scripts);
    if (!status.ok())
        return complain_usage(status.text);
    CPDFDocument document;
    set_up(document, arguments.scripts, arguments.output);
    if (!open_document(document, arguments.input) || !may_fill(document, arguments.input))
        return COMMAND_REFUSED;
    status = document.calculate();
    if (status.ok())
        status = save_computed(document, arguments.input, arguments.output, arguments.scripts);
    return end_with(status, arguments.input.path.text);
}

}  // namespace

void add_calculate_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<CALCULATE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("calculate", "Runs the calculations of a form again and saves the result");
    add_input(verb, arguments->input);
    add_output(verb, arguments->output);
    add_scripts(verb, arguments->scripts);
    verb.footer("The fields of the form's calculation order are calculated from the values as\n"
                "they are, read-only ones too. Fields that a signature locks stay as they are.");
    verb.callback([arguments, &action] { action = [arguments] { return calculate(*arguments); }; });
}
