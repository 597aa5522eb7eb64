// The option --scripts, and what is said of scripts.
#pragma once

#include "document/compute/scripts.h"
#include "tools/save_output.h"
#include "tools/verb.h"

struct SCRIPT_ARGUMENTS {
    COMMAND_WORD word{"known"};
    COMMAND_WORD time{"2"};
    double seconds = 2;  // after check_scripts
    bool verbose = false;
    PDF_SCRIPTS scripts = PDF_SCRIPTS::KNOWN;  // after check_scripts
};

void add_scripts(CLI::App& verb, SCRIPT_ARGUMENTS& arguments);

// Understands the word, or says what is wrong with it.
CPDFStatus check_scripts(SCRIPT_ARGUMENTS& arguments);

// Makes a document that is to be opened run these scripts and draw what the output asks for.
void set_up(CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const OUTPUT_ARGUMENTS& output);

// As save_output; notes what there is to say of scripts, since drawing runs the last of them.
CPDFStatus save_computed(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& output,
                         const SCRIPT_ARGUMENTS& arguments);

// Notes calculated values that were not stored, and, where it is asked for, what scripts printed.
void note_script_run(const CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const COMMAND_INPUT& input);
// The same, and how many scripts did not run.
void note_scripts(const CPDFDocument& document, const SCRIPT_ARGUMENTS& arguments, const COMMAND_INPUT& input);
void note_skipped_scripts(size_t count, const COMMAND_INPUT& input);
