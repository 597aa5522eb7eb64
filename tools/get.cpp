#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <unistd.h>

#include "document/document.h"
#include "document/lookup/held_value.h"
#include "document/xfa/data_value.h"
#include "forms/field.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct GET_ARGUMENTS {
    COMMAND_INPUT input;
    std::vector<COMMAND_WORD> names;
};

// The value of the field, or of the path in XFA data, that is meant.
bool find_value(CPDFDocument& document, const GET_ARGUMENTS& arguments, const std::vector<PDF_XFA_VALUE>& data,
                const std::string& name, std::string& value, CPDFStatus& why)
{
    const auto path = std::find_if(data.begin(), data.end(), [&](const PDF_XFA_VALUE& at) { return at.path == name; });
    if (path != data.end() && !document.field(name)) {
        value = path->value;
        return true;
    }
    const CPDFField* field = find_field(document, arguments.input, name, why);
    value = field ? held_value(*field).joined() : "";
    return field != nullptr;
}

int get_values(const GET_ARGUMENTS& arguments)
{
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    std::vector<PDF_XFA_VALUE> data;
    if (document.has_only_xfa())
        (void)document.xfa_values(data);  // what can't be read has no paths
    std::vector<std::string> values;
    for (const COMMAND_WORD& name : arguments.names) {
        CPDFStatus why;
        if (find_value(document, arguments, data, name.text, values.emplace_back(), why))
            continue;
        complain(arguments.input.path.text, why.text);
        values.pop_back();
    }
    if (values.size() != arguments.names.size())
        return COMMAND_REFUSED;
    note_adopted(document, arguments.input);
    const bool terminal = isatty(STDOUT_FILENO);
    for (const std::string& value : values)
        put((terminal ? printable_lines(value) : value) + "\n");
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
