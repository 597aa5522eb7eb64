// Scripts that viewers know without running them: how a value is checked, shown and calculated (ISO 32000-2, 12.6.4.17).
#pragma once

#include <string>
#include <vector>

// The scripts of keystrokes and of showing the value, in UTF-8; empty for none.
struct PDF_FIELD_FORMAT {
    std::string keystroke;
    std::string format;
};

struct PDF_CALCULATION {
    std::string function;             // SUM, AVG, PRD, MIN or MAX; empty for none
    std::vector<std::string> fields;  // full names of fields or groups, or patterns, in UTF-8
};

// What read_format takes, for sentences.
inline constexpr const char* FORMAT_WORDS =
    "number:DECIMALS, percent:DECIMALS (both with :SAMPLE such as :1.234,56 or :$1,234.56), date:mm/dd/yyyy, "
    "time:HH:MM, special:zip, zip4, phone or ssn, mask:999-AA, or none";

inline constexpr const char* CALCULATION_WORDS =
    "sum, average, product, minimum or maximum, each with :FIELD,FIELD, or none";

// Each reads words of people. False for others.
bool read_format(const std::string& words, PDF_FIELD_FORMAT& out);
bool read_calculation(const std::string& words, PDF_CALCULATION& out);

// The script that calculates: a call of AFSimple_Calculate.
std::string calculation_script(const std::string& function, const std::vector<std::string>& fields);
