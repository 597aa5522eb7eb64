#include <CLI/CLI.hpp>
#include <list>
#include <memory>

#include "document/lookup/field_text.h"
#include "formats/design/flag_words.h"
#include "tools/edit/design_options.h"
#include "tools/edit/edit_verb.h"
#include "tools/edit/field_pick.h"

namespace {

struct SET_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    FIELD_PICK fields;
    CHANGE_ARGUMENTS change;
    DesignOptions design;
    std::list<std::pair<uint32_t, COMMAND_WORD>> flags;  // every flag, and on, off or nothing
};

struct SET_REQUEST {
    PDF_FIELD_CHANGE change;
    PDF_FIELD_DESIGN design;

    bool changes() const
    {
        return change.set_flags || change.clear_flags || change.max_length || change.options || change.default_value;
    }
};

// Fails where the command line makes no sense.
CPDFStatus read_all(const SET_ARGUMENTS& arguments, SET_REQUEST& request)
{
    for (const auto& [flag, word] : arguments.flags) {
        if (word.text == "on")
            request.change.set_flags |= flag;
        else if (word.text == "off")
            request.change.clear_flags |= flag;
        else if (!word.text.empty())
            return wrong_usage(in_quotes(word.text) + " is neither on nor off");
    }
    CPDFStatus usage = check_field_pick(arguments.fields);
    if (usage.ok())
        usage = read_change(arguments.change, request.change);
    if (usage.ok())
        usage = arguments.design.read(request.design);
    if (!usage.ok() || request.changes() || request.design.sets_any())
        return usage;
    return wrong_usage("there is nothing to set (`formwork set --help` tells more)");
}

std::vector<CPDFStatus> set_all(CPDFDocument& document, const SET_ARGUMENTS& arguments, const SET_REQUEST& request)
{
    std::vector<CPDFStatus> results;
    const std::vector<CPDFField*> fields = choose_fields(document, arguments.edit.input, arguments.fields, results);
    if (request.changes()) {
        for (CPDFField* field : fields)
            results.push_back(document.change_field(*field, request.change, arguments.edit.how()));
    }
    if (request.design.sets_any())
        results.push_back(document.design_fields(fields, request.design, arguments.edit.how()));
    return results;
}

int set(const SET_ARGUMENTS& arguments)
{
    SET_REQUEST request;
    if (const CPDFStatus usage = read_all(arguments, request); !usage.ok())
        return complain_usage(usage.text);
    return edit_file(arguments.edit, [&](CPDFDocument& document) { return set_all(document, arguments, request); });
}

}  // namespace

void add_set_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<SET_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("set", "Changes what fields are, are called and look like");
    add_input(verb, arguments->edit.input);
    add_field_pick(verb, arguments->fields);
    for (const PDF_FLAG_WORD& option : settable_flags()) {
        COMMAND_WORD& value = arguments->flags.emplace_back(option.flag, COMMAND_WORD()).second;
        verb.add_option("--" + option.name(), value, option.help)->option_text("on|off");
    }
    add_change_options(verb, arguments->change);
    arguments->design.add_options(verb);
    add_edit_options(verb, arguments->edit);
    verb.footer("--max-length none takes the limit away. The options given replace all that the\n"
                "field had. "
                "An empty label or caption takes it away. Values are what\n"
                "`formwork fill` changes.");
    verb.callback([arguments, &action] { action = [arguments] { return set(*arguments); }; });
}
