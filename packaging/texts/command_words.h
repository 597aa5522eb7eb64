// What the command line takes, as manual pages and completions tell it: read from the parser itself, so that nothing is said twice.
#pragma once

#include <string>
#include <vector>

enum class VALUE_KIND {
    NONE,     // a flag
    CHOICES,  // one of COMMAND_OPTION::choices
    FILE,     // a path
    OTHER,
};

// An option, or an argument that has a place instead of a name.
struct COMMAND_OPTION {
    std::vector<std::string> names;  // "-o", "--output"; of an argument none
    std::string word;                // what stands for its value, such as "OUT"; empty for a flag
    std::string help;
    std::string group;
    VALUE_KIND kind = VALUE_KIND::NONE;
    std::vector<std::string> choices;
    bool repeats = false;  // only of an argument: the last one, which takes all further words
    bool required = false;
};

struct COMMAND_VERB {
    std::string name;
    std::string description;
    std::string footer;
    std::vector<COMMAND_OPTION> arguments;
    std::vector<COMMAND_OPTION> options;
};

struct COMMAND_WORDS {
    std::string description;
    std::string footer;
    std::vector<COMMAND_OPTION> options;  // of the command without a verb
    std::vector<COMMAND_VERB> verbs;
};

COMMAND_WORDS read_command_words();

// The words with spaces between them.
std::string joined(const std::vector<std::string>& words);
