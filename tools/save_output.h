// Where verbs that change a document save it.
#pragma once

#include <string>

#include "tools/verb.h"

struct OUTPUT_ARGUMENTS {
    COMMAND_WORD output;  // empty with --in-place
    bool in_place = false;
};

// Adds the options -o and --in-place.
void add_output(CLI::App& verb, OUTPUT_ARGUMENTS& arguments);

// What is wrong with the options, for complain_usage; empty when nothing is. The input is replaced only on request.
std::string wrong_output(const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Saves the document, to standard output for "-".
CPDFStatus save_output(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Writes what is no PDF file to `path`, which is replaced as a whole, or to standard output for "" and "-".
CPDFStatus save_text(std::string_view text, const std::string& path);
