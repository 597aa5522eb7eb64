#include <CLI/CLI.hpp>
#include <memory>

#include "forms/acro_form.h"
#include "forms/field.h"
#include "tools/edit/edit_verb.h"
#include "tools/edit/field_pick.h"

namespace {

struct REMOVE_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    std::vector<COMMAND_WORD> names;
};

// Names may lead to one field, and a field whose group was removed before it is gone as asked.
std::vector<CPDFStatus> remove_all(CPDFDocument& document, const REMOVE_ARGUMENTS& arguments)
{
    std::vector<CPDFStatus> results;
    std::vector<PDF_REF> fields;
    for (const COMMAND_WORD& name : arguments.names) {
        if (const CPDFField* field =
                choose_field(document, arguments.edit.input, name.text, results, PDF_FIELD_WORDS::NUMBERS))
            fields.push_back(field->m_ref);
    }
    if (!results.empty())
        return results;
    for (const PDF_REF& ref : fields) {
        if (CPDFField* field = document.form().find(ref))
            results.push_back(document.remove_field(*field, arguments.edit.how()));
    }
    return results;
}

}  // namespace

void add_remove_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<REMOVE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("remove", "Removes fields, with all under them and all that shows them");
    add_input(verb, arguments->edit.input);
    verb.add_option("NAME", arguments->names, "full names of fields or groups, or numbers")
        ->required()
        ->option_text("...");
    add_edit_options(verb, arguments->edit);
    verb.footer("Parts of names are not enough to lose a field: give its full name, or its number\n"
                "in the list. A group in which nothing is left goes, too.");
    verb.callback([arguments, &action] {
        action = [arguments] {
            return edit_file(arguments->edit, [&](CPDFDocument& document) { return remove_all(document, *arguments); });
        };
    });
}
