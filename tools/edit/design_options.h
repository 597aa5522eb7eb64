// What a designer says about fields, as options of the command line.
#pragma once

#include <deque>
#include <string>

#include "formats/design/design_words.h"
#include "tools/verb.h"

// Each word under the option that it came with; what was not given is not there.
class DesignOptions {
public:
    // Adds the options to the verb.
    void add_options(CLI::App& verb);

    // Makes `design` out of them. Fails for a word that makes no sense.
    CPDFStatus read(PDF_FIELD_DESIGN& design) const;

private:
    struct GIVEN {
        const PDF_DESIGN_WORD* design;  // borrowed from the table
        std::string name = "--";
        COMMAND_WORD word;
        const CLI::Option* option = nullptr;  // borrowed from the verb
    };

    std::deque<GIVEN> m_given;
};
