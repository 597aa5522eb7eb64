// What a designer says about fields, as words of the command line.
#pragma once

#include <deque>

#include "document/design/field_design.h"
#include "tools/verb.h"

namespace CLI {
class Option;
}

// Each word under the option that it came with; what was not given is not there.
class CPDFDesignWords {
public:
    // Adds the options to the verb.
    void add_options(CLI::App& verb);

    // Makes `design` out of them. Fails for a word that makes no sense.
    CPDFStatus read(PDF_FIELD_DESIGN& design) const;

private:
    struct WORD {
        const struct DESIGN_OPTION* option;  // borrowed from the table
        COMMAND_WORD word;
        const CLI::Option* given = nullptr;  // borrowed from the verb
    };

    std::deque<WORD> m_words;
};

// Reads a number of points, 0 or more; false for anything else.
bool read_points(const std::string& text, double& out);
