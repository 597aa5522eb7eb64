// Where verbs that change a document save it.
#pragma once

#include <string>

#include "tools/verb.h"

struct OUTPUT_ARGUMENTS {
    COMMAND_WORD output;  // empty with --in-place
    bool in_place = false;
    bool no_appearance = false;

    PDF_DRAWING drawing() const { return no_appearance ? PDF_DRAWING::LEAVE_TO_VIEWERS : PDF_DRAWING::DRAW; }
};

// Whether both paths lead to one file that exists.
bool is_same_file(const std::string& a, const std::string& b);

// Adds the options -o, --in-place and --no-appearance.
void add_output(CLI::App& verb, OUTPUT_ARGUMENTS& arguments);

// Whether the options say where the result goes. The input is replaced only on request.
CPDFStatus check_output(const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Says on standard error what a change of values leaves undone: XFA data that the form keeps beside its fields, unless
// they are `rewritten`; or that there are none to rewrite.
void note_xfa(CPDFDocument& document, const COMMAND_INPUT& input, bool rewritten);

// Puts the values of the fields into the XFA data, and says on standard error of which fields it can't.
CPDFStatus write_xfa(CPDFDocument& document, const COMMAND_INPUT& input);

// Says on standard error what could not be drawn.
void note_drawing(const CPDFDocument& document, const COMMAND_INPUT& input);

// Saves the document, to standard output for "-", and says what could not be drawn.
CPDFStatus save_output(CPDFDocument& document, const COMMAND_INPUT& input, const OUTPUT_ARGUMENTS& arguments);

// Writes what is no PDF file to `path`, which is replaced as a whole, or to standard output for "" and "-".
CPDFStatus save_text(std::string_view text, const std::string& path);
