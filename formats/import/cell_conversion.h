// Texts of a table made into what a form expects: dates and numbers written in another way, capital letters.
#pragma once

#include <string>

#include "file/status.h"

// What a conversion is called and takes, as a mapping says it:
//   "date"    "dd.mm.yyyy>mm/dd/yyyy", formats as print_date has them, both with a day, a month and a year
//   "number"  "1.234,56>1234.56", each of them one of 1,234.56 1234.56 1.234,56 1234,56 1'234.56
//   "upper"   nothing
struct PDF_CELL_CONVERSION {
    enum KIND { DATE, NUMBER, UPPER } kind;
    std::string from;
    std::string to;
};

// Makes a conversion of its name and what it takes; the refusal is a sentence.
CPDFStatus make_conversion(const std::string& name, const std::string& pair, PDF_CELL_CONVERSION& out);

// Converts `text`, UTF-8; an empty one stays empty. The refusal is a sentence about the text.
CPDFStatus convert_cell(const PDF_CELL_CONVERSION& conversion, std::string& text);
