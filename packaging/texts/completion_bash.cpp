#include "packaging/texts/command_texts.h"

namespace {

constexpr const char* HEAD = R"(# Completion of formwork for bash.

_formwork_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_formwork() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} verb=${COMP_WORDS[1]}
    local options valued place=0 i
    COMPREPLY=()
)";

// Words with places are counted, since an argument may have choices of its own.
constexpr const char* PLACES = R"(    for ((i = 2; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            -*) [[ $valued != *" ${COMP_WORDS[i]} "* ]] || ((++i)) ;;
            *) ((++place)) ;;
        esac
    done
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
        return
    fi
    case "$verb $place" in
)";

constexpr const char* TAIL = R"(        *) _formwork_files "$cur" ;;
    esac
}

complete -F _formwork formwork
)";

std::string offer(const std::string& words)
{
    return "mapfile -t COMPREPLY < <(compgen -W \"" + words + "\" -- \"$cur\")";
}

std::string names_of(const std::vector<COMMAND_OPTION>& options, bool only_valued)
{
    std::string out;
    for (const COMMAND_OPTION& option : options) {
        if (!only_valued || option.kind != VALUE_KIND::NONE)
            out += (out.empty() ? "" : " ") + joined(option.names);
    }
    return out;
}

// What follows an option that takes a value.
std::string value_case(const std::string& verb, const COMMAND_OPTION& option)
{
    std::string pattern;
    for (const std::string& name : option.names)
        pattern += (pattern.empty() ? "\"" : " | \"") + verb + " " + name + "\"";
    const std::string action = option.kind == VALUE_KIND::CHOICES ? offer(joined(option.choices)) + "; return"
                               : option.kind == VALUE_KIND::FILE  ? "_formwork_files \"$cur\"; return"
                                                                  : "return";
    return "        " + pattern + ") " + action + " ;;\n";
}

}  // namespace

std::string make_bash_completion(const COMMAND_WORDS& command)
{
    std::string verbs;
    std::string lists;
    std::string values;
    std::string places;
    for (const COMMAND_VERB& verb : command.verbs) {
        verbs += verb.name + " ";
        lists += "        " + verb.name + ")\n            options=\"" + names_of(verb.options, false) +
                 "\"\n            valued=\" " + names_of(verb.options, true) + " \"\n            ;;\n";
        for (const COMMAND_OPTION& option : verb.options)
            values += option.kind == VALUE_KIND::NONE ? "" : value_case(verb.name, option);
        for (size_t i = 0; i < verb.arguments.size(); ++i) {
            if (verb.arguments[i].kind == VALUE_KIND::CHOICES)
                places += "        \"" + verb.name + " " + std::to_string(i) + "\") " +
                          offer(joined(verb.arguments[i].choices)) + " ;;\n";
        }
    }
    return std::string(HEAD) + "    if ((COMP_CWORD == 1)); then\n        " +
           offer(verbs + names_of(command.options, false)) + "\n        return\n    fi\n    case $verb in\n" + lists +
           "        *) return ;;\n    esac\n    case \"$verb $prev\" in\n" + values + "    esac\n" + PLACES + places +
           TAIL;
}
