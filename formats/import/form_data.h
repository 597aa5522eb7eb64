// Values for the fields of a form, as data files hold them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/fill/filler.h"
#include "file/status.h"

// A value for the field of this full name, both in UTF-8 as far as the file they come from is.
struct PDF_FORM_ENTRY {
    std::string name;
    CPDFValue value;
    PDF_WORDS words = PDF_WORDS::STATES_FIRST;
    bool is_typed = false;       // not from a file: an empty text was meant
    CPDFField* field = nullptr;  // borrowed; the field itself, where the name alone does not tell it
    bool is_cell = false;        // of a table: a text that may stand for several, and an empty one for no value
};

struct PDF_CSV_STYLE;

// In the order of the file. A name may come more than once.
using CPDFFormData = std::vector<PDF_FORM_ENTRY>;

// Reads a data file of up to LIMIT_DATA_FILE bytes by the suffix of its name: .json, .csv, .fdf or .xfdf, see the
// readers of each. On failure, which the status tells without the file's name, `out` is empty.
CPDFStatus read_form_data(const std::string& path, CPDFFormData& out, const PDF_CSV_STYLE& style);
CPDFStatus read_form_data(const std::string& path, CPDFFormData& out);

// The same with the bytes of such a file, which are borrowed for the call; `format` is "json", "csv", "fdf" or "xfdf".
CPDFStatus read_form_bytes(std::string_view bytes, std::string_view format, CPDFFormData& out,
                           const PDF_CSV_STYLE& style);

// The refusal of a file of a spreadsheet program, by its suffix; ok for others.
CPDFStatus check_no_spreadsheet(const std::string& suffix);

// The suffix of a file name with its dot, in small letters; empty when there is none.
std::string suffix_of(std::string_view path);
