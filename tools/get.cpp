#include <CLI/CLI.hpp>
#include <memory>
#include <unistd.h>

#include "document/document.h"
#include "document/lookup/held_value.h"
#include "forms/field.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct GET_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> names;
};

int get_values(const GET_ARGUMENTS& arguments)
{
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    std::vector<CPDFField*> fields;
    if (!find_fields(document, arguments.input, arguments.names, fields))
        return COMMAND_REFUSED;
    const bool terminal = isatty(STDOUT_FILENO);
    for (const CPDFField* field : fields) {
        const std::string value = held_value(*field).joined();
        put((terminal ? printable_lines(value) : value) + "\n");
    }
    return put_done();
}

}  // namespace

void add_get_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<GET_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("get", "Prints the values of fields, one a line");
    add_input(verb, arguments->input);
    verb.add_option("NAME", arguments->names, "names of fields, parts of them or their numbers in the list")
        ->required()
        ->option_text("...");
    verb.footer("A value of several texts is joined with \", \"; a field without a value gives an\n"
                "empty line. Line breaks in a value are printed as they are; `formwork list\n"
                "--json` keeps values apart.");
    verb.callback([arguments, &action] { action = [arguments] { return get_values(*arguments); }; });
}
