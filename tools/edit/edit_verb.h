// What the verbs that change the structure of a form share.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "document/document.h"
#include "tools/save_output.h"
#include "tools/verb.h"

namespace CLI {
class Option;
}

struct EDIT_ARGUMENTS {
    COMMAND_INPUT input;
    OUTPUT_ARGUMENTS output;
    bool force = false;

    PDF_EDIT how() const { return force ? PDF_EDIT::FORCE : PDF_EDIT::RESPECT_SIGNATURES; }
};

// Adds the output and --force. The file is the verb's own first argument.
void add_edit_options(CLI::App& verb, EDIT_ARGUMENTS& arguments);

// Opens the document, carries out `change` and saves. `change` returns how each of its operations went; nothing is written
// when one was refused. Returns a COMMAND_EXIT.
int edit_file(const EDIT_ARGUMENTS& arguments,
              const std::function<std::vector<CPDFStatus>(CPDFDocument& document)>& change);

// Flags, maximum length, default and options as words of the command line. --option comes as VALUE or VALUE=TEXT.
struct CHANGE_ARGUMENTS {
    std::vector<COMMAND_WORD> options;
    std::vector<COMMAND_WORD> defaults;
    COMMAND_WORD max_length;
};

void add_change_options(CLI::App& verb, CHANGE_ARGUMENTS& arguments);

// Makes `change` out of them, except for the flags. Fails for a word that makes no sense.
CPDFStatus read_change(const CHANGE_ARGUMENTS& arguments, PDF_FIELD_CHANGE& change);

// Where widgets are to stand: "X,Y,W,H" in points, on the page N or behind "PAGE:".
struct PLACE_ARGUMENTS {
    COMMAND_WORD page;  // empty when it is not given
    std::vector<COMMAND_WORD> rects;
};

// Adds --rect, which is returned, and --page.
CLI::Option* add_place_options(CLI::App& verb, PLACE_ARGUMENTS& arguments);

// Makes `places` of the rectangles; those that name no page are on the given one, or on `page` where none is given. Fails
// for a word that makes no sense.
CPDFStatus read_places(const PLACE_ARGUMENTS& arguments, int32_t page, std::vector<PDF_PLACE>& places);

// The page alone: `page` stays where none is given.
CPDFStatus read_page(const PLACE_ARGUMENTS& arguments, int32_t& page);

// Reads a whole number of decimal digits, at most one billion; false for anything else.
bool read_count(const std::string& text, int32_t& out);
