#include <CLI/CLI.hpp>
#include <charconv>
#include <list>
#include <memory>

#include "document/lookup/field_text.h"
#include "tools/edit/design_words.h"
#include "tools/edit/edit_verb.h"
#include "tools/terminal_text.h"

namespace {

struct ADD_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    COMMAND_WORD kind;
    COMMAND_WORD name;
    COMMAND_WORD page{"1"};
    std::vector<COMMAND_WORD> rects;
    std::vector<COMMAND_WORD> states;
    CHANGE_ARGUMENTS change;
    CPDFDesignWords design;
    std::list<std::pair<uint32_t, bool>> flags;  // every flag, and whether it is given
};

// "X,Y,W,H" in points.
bool read_rect(const std::string& text, PDF_RECT& out)
{
    double* const parts[] = {&out.x, &out.y, &out.width, &out.height};
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    for (double* part : parts) {
        if (part != parts[0] && (at == end || *at++ != ','))
            return false;
        const std::from_chars_result result = std::from_chars(at, end, *part, std::chars_format::fixed);
        if (result.ec != std::errc() || !(*part >= -1e6 && *part <= 1e6))
            return false;
        at = result.ptr;
    }
    return at == end;
}

// Fails where the command line makes no sense.
CPDFStatus read_field(const ADD_ARGUMENTS& arguments, PDF_NEW_FIELD& field)
{
    const PDF_FIELD_KIND* kind = field_kind(arguments.kind.text.c_str());
    if (!kind)
        return wrong_usage(in_quotes(arguments.kind.text) +
                           " is no kind of field: give text, check, radio, combo, list or signature");
    field.kind = kind->id;
    field.name = arguments.name.text;
    if (!is_utf8(field.name))
        return wrong_usage("the name " + in_quotes(field.name) + " is not UTF-8");
    if (!read_count(arguments.page.text, field.page))
        return wrong_usage(in_quotes(arguments.page.text) + " is no page number");
    for (const COMMAND_WORD& rect : arguments.rects) {
        if (!read_rect(rect.text, field.rects.emplace_back()))
            return wrong_usage(in_quotes(rect.text) + " is no rectangle: give X,Y,WIDTH,HEIGHT in points");
    }
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
        return std::vector{status};
    });
}

constexpr const char* FOOTER =
    R"(KIND is text, check, radio, combo, list or signature. NAME is a full name; groups on the way to it are made.
The default becomes the value, too.
A rectangle is counted in points from the lower left corner of the page. The buttons of a radio group share one, or have one each:
  formwork add form.pdf radio size --page 2 --rect 100,500,90,20 --state S --state M --state L -o out.pdf)";

}  // namespace

void add_add_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<ADD_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("add", "Adds a field to a page");
    add_input(verb, arguments->edit.input);
    verb.add_option("KIND", arguments->kind, "what kind of field")->required()->option_text(" ");
    verb.add_option("NAME", arguments->name, "its full name")->required()->option_text(" ");
    verb.add_option("--page", arguments->page, "the page, counted from 1 (1)")->option_text("N");
    verb.add_option("--rect", arguments->rects, "where it stands")
        ->required()
        ->option_text("X,Y,W,H")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb.add_option("--state", arguments->states, "check box: its on state (Yes); radio group: one for each button")
        ->option_text("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    add_change_options(verb, arguments->change);
    arguments->design.add_options(verb);
    for (const FLAG_OPTION& option : flag_options()) {
        bool& given = arguments->flags.emplace_back(option.flag, false).second;
        verb.add_flag(option.name(), given, option.help);
    }
    add_edit_options(verb, arguments->edit);
    verb.footer(FOOTER);
    verb.callback([arguments, &action] { action = [arguments] { return add(*arguments); }; });
}
