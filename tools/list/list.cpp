#include <CLI/CLI.hpp>
#include <memory>

#include "document/document.h"
#include "forms/field_walk.h"
#include "tools/list/list_internal.h"
#include "tools/terminal_text.h"
#include "tools/verb.h"

namespace {

struct LIST_ARGUMENTS {
    COMMAND_INPUT input;
    bool json = false;
    bool all = false;
};

int list_fields(const LIST_ARGUMENTS& arguments)
{
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    if (!document.permits_filling())
        complain(arguments.input.path.text, "note: the file's permissions forbid to fill the form");
    const LIST_WHAT what = arguments.all ? LIST_WHAT::ALL : LIST_WHAT::NAMED;
    if (arguments.json)
        return end_with(put_list_json(document, arguments.input, what), arguments.input.path.text);
    int64_t fields = 0;
    int64_t listed = 0;
    for_each_field(document.form(), [&](const CPDFField& field) {
        ++fields;
        listed += is_listed(field, what);
    });
    if (listed)
        put_list_table(document, what);
    else
        put(printable(arguments.input.path.text) + " has no form fields" + (fields ? " with a name" : "") + "\n");
    return put_done();
}

}  // namespace

bool is_listed(const CPDFField& field, LIST_WHAT what)
{
    return what == LIST_WHAT::ALL || field.m_name.len > 0;
}

void add_list_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<LIST_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("list", "Shows the fields of a form, their values and flags");
    add_input(verb, arguments->input);
    verb.add_flag("--json", arguments->json, "as a JSON array, one object for each field");
    verb.add_flag("--all", arguments->all, "also fields without a name of their own, under their numbered names");
    verb.footer("In the table, control characters are shown as escapes, and what is too long for the terminal is cut.\n"
                "The value is that of the field itself, or its default value where it has none; a\n"
                "long text that is kept in a stream is left to `formwork get`. What a format of the form, such as one\n"
                "for dates, makes of the value stands beside it (shown).");
    verb.callback([arguments, &action] { action = [arguments] { return list_fields(*arguments); }; });
}
