#include "packaging/texts/command_texts.h"

namespace {

// Text inside single quotes and the brackets behind an option.
std::string escaped(const std::string& text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\'')
            out += "'\\'";
        else if (c == '[' || c == ']' || c == ':' || c == '\\')
            out += '\\';
        out += c;
    }
    return out;
}

std::string value_of(const COMMAND_OPTION& option)
{
    const std::string word = ":" + escaped(option.word) + ":";
    switch (option.kind) {
    case VALUE_KIND::NONE:
        return "";
    case VALUE_KIND::CHOICES:
        return word + "(" + joined(option.choices) + ")";
    case VALUE_KIND::FILE:
        return word + "_files";
    case VALUE_KIND::OTHER:
        break;
    }
    return word + " ";
}

std::string option_spec(const COMMAND_OPTION& option)
{
    std::string out;
    for (const std::string& name : option.names)
        out += " \\\n                '*" + name + "[" + escaped(option.help) + "]" + value_of(option) + "'";
    return out;
}

// A place where nothing can be offered must leave words that begin with a dash to the options.
std::string argument_spec(const COMMAND_OPTION& argument)
{
    std::string value = value_of(argument);
    if (argument.kind == VALUE_KIND::OTHER)
        value += "_guard \"^-*\" " + argument.word;
    return " \\\n                '" + std::string(argument.repeats ? "*" : argument.required ? "" : ":") + value + "'";
}

}  // namespace

std::string make_zsh_completion(const COMMAND_WORDS& command)
{
    std::string verbs;
    std::string cases;
    for (const COMMAND_VERB& verb : command.verbs) {
        verbs += "        '" + verb.name + ":" + escaped(verb.description) + "'\n";
        cases += "        " + verb.name + ")\n            _arguments";
        for (const COMMAND_OPTION& option : verb.options)
            cases += option_spec(option);
        for (const COMMAND_OPTION& argument : verb.arguments)
            cases += argument_spec(argument);
        cases += "\n            ;;\n";
    }
    std::string options;
    for (const COMMAND_OPTION& option : command.options)
        options += " " + joined(option.names);
    return "#compdef formwork\n# Completion of formwork for zsh.\n\n_formwork() {\n    local -a verbs=(\n" + verbs +
           "    )\n    if ((CURRENT == 2)); then\n        if [[ $words[2] == -* ]]; then\n            compadd --" +
           options +
           "\n        else\n            _describe verb verbs\n        fi\n        return\n    fi\n"
           "    local verb=$words[2]\n    shift words\n    ((CURRENT--))\n    case $verb in\n" +
           cases + "    esac\n}\n\n_formwork \"$@\"\n";
}
