// The options that say how fill reads its data.
#pragma once

#include "formats/data_rules.h"
#include "tools/verb.h"

struct DATA_ARGUMENTS {
    COMMAND_WORD delimiter;
    COMMAND_WORD list_separator{"|"};
    COMMAND_WORD empty{"keep"};
    COMMAND_WORD map;
    bool ignore_unknown = false;
};

// Adds the options --delimiter, --list-separator, --empty, --map and --ignore-unknown.
void add_data_options(CLI::App& verb, DATA_ARGUMENTS& arguments);

// Makes rules of what the command line says, but for the map; the refusal is one of wrong usage.
CPDFStatus read_rules(const DATA_ARGUMENTS& arguments, PDF_DATA_RULES& rules);

// The same with the map, if there is one, of a command line that makes sense; false after a complaint.
bool open_rules(const DATA_ARGUMENTS& arguments, PDF_DATA_RULES& rules);
