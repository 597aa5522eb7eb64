// What a designer says about fields, each as one word.
#pragma once

#include <span>
#include <string>

#include "document/design/field_design.h"

// A part of a design under its name.
struct PDF_DESIGN_WORD {
    const char* name;    // such as "border-width"
    const char* help;    // what it is, for people
    const char* value;   // what stands for the word in such texts
    const char* wanted;  // what the word must be, for the refusal of another
    bool (*read)(const std::string& word, PDF_FIELD_DESIGN& design);  // false for a word that makes no sense
    bool is_number = false;                                           // the word may be a number
};

// All of them, in the order in which people see them.
std::span<const PDF_DESIGN_WORD> design_words();

// Takes the word into `design`. The refusal is a sentence that begins with `name`.
CPDFStatus read_design_word(const PDF_DESIGN_WORD& at, const std::string& name, const std::string& word,
                            PDF_FIELD_DESIGN& design);

// Reads a number of points, 0 or more; false for anything else.
bool read_points(const std::string& text, double& out);
