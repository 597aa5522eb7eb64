#include <CLI/CLI.hpp>
#include <memory>

#include "tools/save_output.h"
#include "tools/script_arguments.h"
#include "tools/verb.h"

namespace {

struct RESET_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> names;
    OUTPUT_ARGUMENTS output;
    SCRIPT_ARGUMENTS scripts;
    bool xfa = false;
    bool force = false;
};

int reset_fields(RESET_ARGUMENTS& arguments)
{
    CPDFStatus status = check_output(arguments.input, arguments.output);
    if (status.ok())
        status = check_scripts(arguments.scripts);
    if (!status.ok())
        return complain_usage(status.text);
    CPDFDocument document;
    set_up(document, arguments.scripts, arguments.output);
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    const PDF_FILL how = arguments.force ? PDF_FILL::FORCE : PDF_FILL::RESPECT_READ_ONLY;
    do {
        std::vector<CPDFField*> fields;
        if (!find_fields(document, arguments.input, arguments.names, fields))
            return COMMAND_REFUSED;
        status = fields.empty() ? document.reset(how) : document.reset(fields, how);
    } while (mend_document(document, arguments.input));
    if (status.ok())
        note_xfa(document, arguments.input, arguments.xfa);
    if (status.ok() && arguments.xfa)
        status = write_xfa(document, arguments.input);
    if (status.ok())
        status = save_computed(document, arguments.input, arguments.output, arguments.scripts);
    return end_with(status, arguments.input.path.text);
}

}  // namespace

void add_reset_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<RESET_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("reset", "Returns fields to their default values and saves the result");
    add_input(verb, arguments->input);
    verb.add_option("NAME", arguments->names, "full names of fields; all fields when none is given")
        ->option_text("...");
    add_output(verb, arguments->output);
    verb.add_flag("--xfa", arguments->xfa,
                  "put the values of all fields into the XFA data, too; what no field holds stays");
    verb.add_flag("--force", arguments->force, "reset what a signature locks or what is not permitted, too");
    add_scripts(verb, arguments->scripts);
    verb.footer("A field without a default ends without a value. A field that groups others is\n"
                "reset with all of them; read-only fields are reset, too. Push buttons and\n"
                "signatures stay as they are.");
    verb.callback([arguments, &action] { action = [arguments] { return reset_fields(*arguments); }; });
}
