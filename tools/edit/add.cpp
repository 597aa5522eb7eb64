#include <CLI/CLI.hpp>
#include <list>
#include <memory>

#include "core/dictionary.h"
#include "document/lookup/field_text.h"
#include "formats/design/flag_words.h"
#include "tools/edit/design_options.h"
#include "tools/edit/edit_verb.h"
#include "tools/terminal_text.h"

namespace {

struct ADD_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    COMMAND_WORD kind;
    COMMAND_WORD name;
    PLACE_ARGUMENTS places;
    std::vector<COMMAND_WORD> states;
    CHANGE_ARGUMENTS change;
    DesignOptions design;
    std::list<std::pair<uint32_t, bool>> flags;  // every flag, and whether it is given
};

// Fails where the command line makes no sense.
CPDFStatus read_field(const ADD_ARGUMENTS& arguments, PDF_NEW_FIELD& field)
{
    const PDF_FIELD_KIND* kind = field_kind(arguments.kind.text.c_str());
    if (!kind)
        return wrong_usage(in_quotes(arguments.kind.text) +
                           " is no kind of field: give text, check, radio, combo, list, push or signature");
    field.kind = kind->id;
    field.name = arguments.name.text;
    if (!is_utf8(field.name))
        return wrong_usage("the name " + in_quotes(field.name) + " is not UTF-8");
    if (CPDFStatus usage = read_places(arguments.places, 1, field.places); !usage.ok())
        return usage;
    for (const COMMAND_WORD& state : arguments.states) {
        if (!is_utf8(state.text))
            return wrong_usage(in_quotes(state.text) + " is not UTF-8");
        field.states.push_back(state.text);
    }
    for (const auto& [flag, given] : arguments.flags)
        field.entries.set_flags |= given ? flag : 0;
    return read_change(arguments.change, field.entries);
}

int add(const ADD_ARGUMENTS& arguments)
{
    PDF_NEW_FIELD field;
    PDF_FIELD_DESIGN design;
    CPDFStatus usage = read_field(arguments, field);
    if (usage.ok())
        usage = arguments.design.read(design);
    if (!usage.ok())
        return complain_usage(usage.text);
    return edit_file(arguments.edit, [&](CPDFDocument& document) {
        CPDFField* added = nullptr;
        CPDFStatus status = document.add_field(field, arguments.edit.how(), &added);
        if (status.ok() && design.sets_any())
            status = document.design_fields({&added, 1}, design, arguments.edit.how());
        if (status.ok() && !design.label && document.root().dict->get_item("StructTreeRoot"))
            complain(arguments.edit.input.path.text,
                     "note: the document is tagged, and field " + in_quotes(field.name) + " has no label (--label)");
        return std::vector{status};
    });
}

constexpr const char* FOOTER =
    R"(KIND is text, check, radio, combo, list, push or signature. NAME is a full name;
groups on the way to it are made. The default becomes the value, too.
A rectangle is counted in points from the lower left corner of the page; with
several the field has as many widgets. The buttons of a radio group share one,
or have one each:
  formwork add form.pdf radio size --rect 2:100,500,90,20 --state S --state M
    --state L -o out.pdf)";

}  // namespace

void add_add_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<ADD_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("add", "Adds a field to a page");
    add_input(verb, arguments->edit.input);
    verb.add_option("KIND", arguments->kind, "text, check, radio, combo, list, push or signature")
        ->required()
        ->option_text(" ");
    verb.add_option("NAME", arguments->name, "its full name")->required()->option_text(" ");
    add_place_options(verb, arguments->places)->required();
    verb.add_option("--state", arguments->states, "check box: its on state (Yes); radio group: one for each button")
        ->option_text("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    add_change_options(verb, arguments->change);
    arguments->design.add_options(verb);
    for (const PDF_FLAG_WORD& option : settable_flags()) {
        bool& given = arguments->flags.emplace_back(option.flag, false).second;
        verb.add_flag("--" + option.name(), given, option.help);
    }
    add_edit_options(verb, arguments->edit);
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return add(*arguments); }; });
}
