#include <CLI/CLI.hpp>
#include <list>
#include <memory>

#include "document/lookup/field_text.h"
#include "tools/edit/edit_verb.h"

namespace {

struct SET_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    std::vector<COMMAND_WORD> names;
    CHANGE_ARGUMENTS change;
    std::list<std::pair<uint32_t, COMMAND_WORD>> flags;  // every flag, and on, off or nothing
};

// Fails where the command line makes no sense.
CPDFStatus read_all(const SET_ARGUMENTS& arguments, PDF_FIELD_CHANGE& change)
{
    for (const auto& [flag, word] : arguments.flags) {
        if (word.text == "on")
            change.set_flags |= flag;
        else if (word.text == "off")
            change.clear_flags |= flag;
        else if (!word.text.empty())
            return wrong_usage(in_quotes(word.text) + " is neither on nor off");
    }
    if (CPDFStatus usage = read_change(arguments.change, change); !usage.ok())
        return usage;
    const bool any =
        change.set_flags || change.clear_flags || change.max_length || change.options || change.default_value;
    return any ? CPDFStatus() : wrong_usage("there is nothing to set (`formwork set --help` tells more)");
}

std::vector<CPDFStatus> set_all(CPDFDocument& document, const SET_ARGUMENTS& arguments, const PDF_FIELD_CHANGE& change)
{
    std::vector<CPDFStatus> results;
    for (const COMMAND_WORD& name : arguments.names) {
        CPDFField* field = document.field(name.text);
        results.push_back(field ? document.change_field(*field, change, arguments.edit.how())
                                : no_such_field(name.text));
    }
    return results;
}

int set(const SET_ARGUMENTS& arguments)
{
    PDF_FIELD_CHANGE change;
    if (const CPDFStatus usage = read_all(arguments, change); !usage.ok())
        return complain_usage(usage.text);
    return edit_file(arguments.edit, [&](CPDFDocument& document) { return set_all(document, arguments, change); });
}

}  // namespace

void add_set_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<SET_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("set", "Changes flags, maximum length, default and options of fields");
    add_input(verb, arguments->edit.input);
    verb.add_option("NAME", arguments->names, "full names of fields")->required()->option_text("...");
    for (const FLAG_OPTION& option : flag_options()) {
        COMMAND_WORD& value = arguments->flags.emplace_back(option.flag, COMMAND_WORD()).second;
        verb.add_option(option.name(), value, option.help)->option_text("on|off");
    }
    add_change_options(verb, arguments->change);
    add_edit_options(verb, arguments->edit);
    verb.footer("--max-length none takes the limit away. The options given replace all that the field had.\n"
                "Values are what `formwork fill` changes.");
    verb.callback([arguments, &action] { action = [arguments] { return set(*arguments); }; });
}
