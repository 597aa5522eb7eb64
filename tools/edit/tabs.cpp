#include <CLI/CLI.hpp>
#include <memory>

#include "tools/edit/edit_verb.h"
#include "tools/edit/field_pick.h"

namespace {

struct TABS_ARGUMENTS {
    EDIT_ARGUMENTS edit;
    std::vector<COMMAND_WORD> by;
    PLACE_ARGUMENTS page;
};

std::vector<CPDFStatus> order(CPDFDocument& document, const TABS_ARGUMENTS& arguments, PDF_TABS tabs)
{
    constexpr std::pair<const char*, PDF_TAB_ORDER> ORDERS[] = {
        {"rows", PDF_TAB_ORDER::ROWS}, {"columns", PDF_TAB_ORDER::COLUMNS}, {"structure", PDF_TAB_ORDER::STRUCTURE}};
    std::vector<CPDFStatus> results;
    tabs.by = PDF_TAB_ORDER::FIELDS;
    for (const auto& [word, by] : ORDERS) {
        if (arguments.by[0].text != word || document.field(word))
            continue;
        if (arguments.by.size() > 1)
            return {wrong_usage("--by " + std::string(word) + " stands alone")};
        tabs.by = by;
    }
    for (const COMMAND_WORD& name : arguments.by) {
        if (tabs.by != PDF_TAB_ORDER::FIELDS)
            continue;
        if (CPDFField* field = choose_field(document, arguments.edit.input, name.text, results))
            tabs.fields.push_back(field);
    }
    if (results.empty())
        results.push_back(document.order_tabs(tabs, arguments.edit.how()));
    return results;
}

int run(const TABS_ARGUMENTS& arguments)
{
    PDF_TABS tabs;
    if (const CPDFStatus usage = read_page(arguments.page, tabs.page); !usage.ok())
        return complain_usage(usage.text);
    return edit_file(arguments.edit, [&](CPDFDocument& document) { return order(document, arguments, tabs); });
}

}  // namespace

void add_tabs_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<TABS_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("tabs", "Sets in which order the tab key goes through the fields");
    add_input(verb, arguments->edit.input);
    verb.add_option("--by", arguments->by, "rows, columns, structure (of a tagged document), or fields")
        ->required()
        ->option_text("HOW...");
    verb.add_option("--page", arguments->page.page, "only this page, counted from 1")->option_text("N");
    add_edit_options(verb, arguments->edit);
    verb.footer("Named fields and groups come first, in that order; others stay as they are.\n"
                "A part of a name that only one field has, or its number in the list, will do.");
    verb.callback([arguments, &action] { action = [arguments] { return run(*arguments); }; });
}
