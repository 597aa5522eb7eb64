// The values of one file as a row of a table.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "file/status.h"

class CPDFDocument;

// The columns that a table is to have, by name, with their places from 0.
using TABLE_COLUMNS = std::unordered_map<std::string, size_t>;

struct TABLE_STYLE {
    bool is_json = false;                    // JSON lines, CSV otherwise
    std::string list_separator = "|";        // of CSV
    const TABLE_COLUMNS* columns = nullptr;  // borrowed; the only names that count, all when null
};

struct FORM_ROW {
    struct CELL {
        std::string name;
        size_t begin;  // in `text`
        size_t size;
    };

    std::string text;         // the line of JSON, or the cells of CSV as they are written
    std::vector<CELL> cells;  // of CSV
};

// Makes the row of an open document, the whole form of which is loaded.
CPDFStatus read_row(CPDFDocument& document, const std::string& file, const TABLE_STYLE& style, FORM_ROW& row);
