#include "packaging/texts/command_words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

#include "tools/verb.h"

namespace {

bool is_choice(const std::string& word)
{
    return !word.empty() &&
           std::all_of(word.begin(), word.end(), [](char c) { return (c >= 'a' && c <= 'z') || c == '-'; });
}

// "a|b|c".
std::vector<std::string> choices_of_word(const std::string& word)
{
    std::vector<std::string> choices;
    for (std::string& choice : CLI::detail::split(word, '|')) {
        if (!is_choice(choice))
            return {};
        choices.push_back(std::move(choice));
    }
    return choices;
}

// "a, b or c" at the end of what the help says.
std::vector<std::string> choices_of_help(const std::string& help)
{
    const size_t colon = help.rfind(": ");
    std::string list = colon == std::string::npos ? help : help.substr(colon + 2);
    const size_t last = list.rfind(" or ");
    if (last == std::string::npos)
        return {};
    list.replace(last, 4, ", ");
    std::vector<std::string> choices;
    for (std::string& choice : CLI::detail::split(list, ',')) {
        choice.erase(0, choice.find_first_not_of(' '));
        if (!is_choice(choice))
            return {};
        choices.push_back(std::move(choice));
    }
    return choices;
}

bool is_file(const std::string& word)
{
    constexpr const char* WORDS[] = {"FILE", "OTHER", "TEMPLATE", "UPDATE", "OUT",   "OUT.png", "PAGE.png",
                                     "DATA", "ROWS",  "MAP",      "LIST",   "NAMES", "ERRORS",  "FONT"};
    return std::find(std::begin(WORDS), std::end(WORDS), word) != std::end(WORDS);
}

COMMAND_OPTION read_option(const CLI::Option& option)
{
    COMMAND_OPTION out;
    const std::string& text = option.get_option_text();
    for (const std::string& name : option.get_snames())
        out.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        out.names.push_back("--" + name);
    out.help = option.get_description();
    std::replace(out.help.begin(), out.help.end(), '\n', ' ');
    out.group = option.get_group();
    out.required = option.get_required();
    out.repeats = out.names.empty() && text == "...";
    if (option.get_items_expected_max() == 0)
        return out;
    out.word = out.names.empty() ? option.get_name(true) : text;
    out.choices = choices_of_word(text);
    if (out.choices.empty())
        out.choices = choices_of_help(out.help);
    out.kind = !out.choices.empty() ? VALUE_KIND::CHOICES : is_file(out.word) ? VALUE_KIND::FILE : VALUE_KIND::OTHER;
    return out;
}

COMMAND_VERB read_verb(const CLI::App& verb)
{
    COMMAND_VERB out = {verb.get_name(), verb.get_description(), verb.get_footer(), {}, {}};
    for (const CLI::Option* option : verb.get_options())
        (option->nonpositional() ? out.options : out.arguments).push_back(read_option(*option));
    return out;
}

}  // namespace

COMMAND_WORDS read_command_words()
{
    CLI::App app;
    COMMAND_ACTION action;
    describe_command(app, action);
    COMMAND_WORDS out = {app.get_description(), app.get_footer(), read_verb(app).options, {}};
    for (const CLI::App* verb : app.get_subcommands({}))
        out.verbs.push_back(read_verb(*verb));
    return out;
}

std::string joined(const std::vector<std::string>& words)
{
    return CLI::detail::join(words, " ");
}
