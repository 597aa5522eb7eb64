#include "packaging/texts/command_texts.h"

namespace {

std::string quoted(const std::string& text)
{
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "'";
}

std::string line(const std::string& condition, const COMMAND_OPTION& option)
{
    std::string out = "complete -c formwork -n " + quoted(condition);
    for (const std::string& name : option.names)
        out += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (option.kind == VALUE_KIND::FILE)
        out += " -r -F";
    else if (option.kind != VALUE_KIND::NONE && !option.names.empty())
        out += " -x";
    if (option.kind == VALUE_KIND::CHOICES)
        out += " -a " + quoted(joined(option.choices));
    return out + " -d " + quoted(option.help) + "\n";
}

}  // namespace

std::string make_fish_completion(const COMMAND_WORDS& command)
{
    const std::string no_verb = "__fish_use_subcommand";
    std::string out = "# Completion of formwork for fish.\n\n";
    for (const COMMAND_OPTION& option : command.options)
        out += line(no_verb, option);
    for (const COMMAND_VERB& verb : command.verbs) {
        const std::string condition = "__fish_seen_subcommand_from " + verb.name;
        out += "\ncomplete -c formwork -f -n " + quoted(no_verb) + " -a " + verb.name + " -d " +
               quoted(verb.description) + "\n";
        for (const COMMAND_OPTION& option : verb.options)
            out += line(condition, option);
        for (const COMMAND_OPTION& argument : verb.arguments)
            out += argument.kind == VALUE_KIND::CHOICES ? line(condition, argument) : "";
    }
    return out;
}
