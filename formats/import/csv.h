// Form data as CSV (RFC 4180): the first row has the names, every other row one set of values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/import/form_data.h"

// Reads rows one after the other. Lines end with LF, CRLF or CR; empty lines are passed over, and so is a byte order
// mark.
class CPDFCsvReader {
public:
    // `text` is borrowed while rows are read.
    explicit CPDFCsvReader(std::string_view text);

    // Reads the next row. False at the end, and for a row that breaks the rules of quotes, behind which nothing can be
    // read: status() tells.
    bool next(std::vector<std::string>& cells);

    // What is wrong with the text, with its line.
    const CPDFStatus& status() const { return m_status; }

private:
    bool at_line_end() const;
    void pass_line_end();
    bool read_cell(std::string& cell);
    bool read_quoted(std::string& cell);
    bool fail(size_t line, const char* what);

    std::string_view m_text;
    size_t m_at = 0;
    size_t m_line = 1;
    CPDFStatus m_status;
};

// What one row says: an entry for every cell that is not empty. Fails when it has not as many cells as there are columns.
CPDFStatus data_of_row(const std::vector<std::string>& columns, std::vector<std::string>& cells, CPDFFormData& out);

// Reads a file with exactly one row of values. On failure `out` is empty.
CPDFStatus read_csv_data(std::string_view text, CPDFFormData& out);

// Appends one cell and, unless it is the first of its row, a comma before it: in quotes where it needs them, and so is
// a first cell that is empty, since an empty line is no row.
void append_csv_cell(std::string& out, std::string_view text, bool is_first);
