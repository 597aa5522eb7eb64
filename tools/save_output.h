// Where verbs that change a document save it.
#pragma once

#include <string>

#include "tools/verb.h"

struct OUTPUT_ARGUMENTS {
    COMMAND_WORD output;  // empty with --in-place
    bool in_place = false;
};

// Whether both paths lead to one file that exists.
bool is_same_file(const std::string& a, const std::string& b);

// Adds the options -o and --in-place.
void add_output(CLI::App& verb, OUTPUT_ARGUMENTS& arguments);

// Whether the options say where the result goes. The input is replaced only on request.
CPDFStatus check_output(const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Says on standard error what a change of values leaves undone: XFA data that the form keeps beside its fields, unless
// they are `rewritten`; or that there are none to rewrite.
void note_xfa(CPDFDocument& document, const COMMAND_INPUT& input, bool rewritten);

// Saves the document, to standard output for "-".
CPDFStatus save_output(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Writes what is no PDF file to `path`, which is replaced as a whole, or to standard output for "" and "-".
CPDFStatus save_text(std::string_view text, const std::string& path);
