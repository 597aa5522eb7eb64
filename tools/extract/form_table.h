// A table of forms, written row by row.
#pragma once

#include <string>
#include <vector>

#include "tools/extract/form_row.h"
#include "tools/extract/spool_file.h"

// CSV has to begin with all names, so rows wait in a file for the last one. JSON lines go out at once.
class FormTable {
public:
    // `style` is borrowed.
    explicit FormTable(const TABLE_STYLE& style) : m_style(style) {}

    // Where the table goes when it is complete: a file, or standard output for "" and "-".
    CPDFStatus open(const std::string& path);

    void add(const std::string& file, const FORM_ROW& row);

    CPDFStatus finish();

    // Whether a field is called like the first column.
    bool has_field_file() const { return m_columns.contains("file"); }

private:
    std::string line_of(const std::string& file, const FORM_ROW& row);
    CPDFStatus write_lines();
    void write(std::string_view text);

    const TABLE_STYLE& m_style;
    std::string m_path;
    TABLE_COLUMNS m_columns;
    std::string m_names;  // the first line
    SpoolFile m_rows;     // of CSV: size, columns so far, line
    SpoolFile m_table;    // for a file
};
