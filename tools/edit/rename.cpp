#include <CLI/CLI.hpp>
#include <memory>

#include "document/lookup/field_text.h"
#include "tools/edit/edit_verb.h"
#include "tools/edit/field_pick.h"
#include "tools/terminal_text.h"

namespace {

struct RENAME_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    COMMAND_WORD name;
    COMMAND_WORD new_name;
    COMMAND_WORD under;
    bool to_top = false;
    bool has_under = false;
};

std::vector<CPDFStatus> rename(CPDFDocument& document, const RENAME_ARGUMENTS& arguments)
{
    std::vector<CPDFStatus> refusals;
    const auto choose = [&](const std::string& name) {
        return choose_field(document, arguments.edit.input, name, refusals, PDF_FIELD_WORDS::NUMBERS);
    };
    CPDFField* field = choose(arguments.name.text);
    CPDFField* parent = arguments.under.text.empty() ? nullptr : choose(arguments.under.text);
    if (!field || !refusals.empty())
        return refusals;
    if (parent || arguments.to_top) {
        if (const CPDFStatus status = document.move_field(*field, parent, arguments.edit.how(), &field);
            !status.ok() || !field)
            return {status};
    }
    if (arguments.new_name.text.empty())
        return {};
    return {document.rename_field(*field, arguments.new_name.text, arguments.edit.how())};
}

int rename_or_move(const RENAME_ARGUMENTS& arguments)
{
    const bool moves = arguments.to_top || arguments.has_under;
    if (arguments.has_under && arguments.under.text.empty())
        return complain_usage("--under needs the name of a group; --top moves a field out of all groups");
    if (arguments.new_name.text.empty() && !moves)
        return complain_usage("give the new name, --under or --top");
    if (arguments.to_top && arguments.has_under)
        return complain_usage("give either --under or --top");
    if (!is_utf8(arguments.new_name.text))
        return complain_usage("the name " + in_quotes(arguments.new_name.text) + " is not UTF-8");
    return edit_file(arguments.edit, [&](CPDFDocument& document) { return rename(document, arguments); });
}

}  // namespace

void add_rename_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<RENAME_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("rename", "Gives a field another name or moves it to another group");
    add_input(verb, arguments->edit.input);
    verb.add_option("NAME", arguments->name, "full name of the field, or its number")->required()->option_text(" ");
    verb.add_option("NEW", arguments->new_name, "its new name within its group, without a '.'")->option_text(" ");
    const CLI::Option* under =
        verb.add_option("--under", arguments->under, "move it into this group")->option_text("GROUP");
    verb.add_flag("--top", arguments->to_top, "move it out of all groups");
    add_edit_options(verb, arguments->edit);
    verb.footer("Parts of names are not enough: give the full name of a field or group, or its\n"
                "number in the list. The new name must be free at every step: a field that is\n"
                "moved and renamed is moved first. Scripts and actions that name the field are\n"
                "not changed.");
    verb.callback([arguments, under, &action] {
        arguments->has_under = under->count() > 0;
        action = [arguments] { return rename_or_move(*arguments); };
    });
}
