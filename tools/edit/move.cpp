#include <CLI/CLI.hpp>
#include <memory>

#include "document/lookup/field_text.h"
#include "tools/edit/edit_verb.h"
#include "tools/edit/field_pick.h"
#include "tools/terminal_text.h"

namespace {

struct MOVE_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    COMMAND_WORD name;
    COMMAND_WORD copy;  // of the verb copy
    PLACE_ARGUMENTS places;
};

using MOVE_OPERATION = CPDFStatus (*)(CPDFDocument& document, CPDFField& field, const MOVE_ARGUMENTS& arguments,
                                      const PDF_MOVE& move);

// Rectangles without a page stay on the page where the widget is.
CPDFStatus read_move(const MOVE_ARGUMENTS& arguments, PDF_MOVE& move)
{
    CPDFStatus usage = read_page(arguments.places, move.page);
    if (usage.ok())
        usage = read_places(arguments.places, 0, move.places);
    if (usage.ok() && !arguments.places.page.text.empty() && move.page == 0)
        usage = wrong_usage("pages are counted from 1");
    return usage;
}

int run(const MOVE_ARGUMENTS& arguments, MOVE_OPERATION operation)
{
    PDF_MOVE move;
    if (const CPDFStatus usage = read_move(arguments, move); !usage.ok())
        return complain_usage(usage.text);
    if (move.places.empty() && move.page == 0)
        return complain_usage("give --rect, --page or both");
    if (!is_utf8(arguments.copy.text))
        return complain_usage("the name " + in_quotes(arguments.copy.text) + " is not UTF-8");
    return edit_file(arguments.edit, [&](CPDFDocument& document) {
        std::vector<CPDFStatus> results;
        if (CPDFField* field = choose_field(document, arguments.edit.input, arguments.name.text, results))
            results.push_back(operation(document, *field, arguments, move));
        return results;
    });
}

void add_verb(CLI::App& verb, const std::shared_ptr<MOVE_ARGUMENTS>& arguments, MOVE_OPERATION operation,
              COMMAND_ACTION& action)
{
    add_place_options(verb, arguments->places);
    add_edit_options(verb, arguments->edit);
    verb.footer("Of a field with several widgets, give a rectangle for each, or one for the\n"
                "first, which the others follow. Rectangles without a page are on the page\n"
                "where the widget is.");
    verb.callback(
        [arguments, operation, &action] { action = [arguments, operation] { return run(*arguments, operation); }; });
}

}  // namespace

void add_move_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<MOVE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("move", "Moves a field to another place");
    add_input(verb, arguments->edit.input);
    verb.add_option("NAME", arguments->name, "name of the field, a part of it or its number")
        ->required()
        ->option_text(" ");
    add_verb(
        verb, arguments,
        [](CPDFDocument& document, CPDFField& field, const MOVE_ARGUMENTS& given, const PDF_MOVE& move) {
            return document.move_widgets(field, move, given.edit.how());
        },
        action);
}

void add_copy_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<MOVE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("copy", "Adds a field that is as another one");
    add_input(verb, arguments->edit.input);
    verb.add_option("NAME", arguments->name, "name of the field, a part of it or its number")
        ->required()
        ->option_text(" ");
    verb.add_option("NEW", arguments->copy, "full name of the copy")->required()->option_text(" ");
    add_verb(
        verb, arguments,
        [](CPDFDocument& document, CPDFField& field, const MOVE_ARGUMENTS& given, const PDF_MOVE& move) {
            return document.copy_field(field, given.copy.text, move, given.edit.how());
        },
        action);
}
