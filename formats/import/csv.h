// Form data as CSV (RFC 4180), also with other dividers than the comma: the first row has the names, every other row one
// set of values.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/import/form_data.h"

// How a file is read.
struct PDF_CSV_STYLE {
    char delimiter = 0;  // what divides cells; 0 for what the file has
    bool keeps_empty_cells = false;
};

// Reads rows one after the other. Lines end with LF, CRLF or CR; empty lines are passed over, and so are a byte order
// mark and a first line "sep=" with the divider, which some spreadsheets write.
class CPDFCsvReader {
public:
    // `text` is borrowed while rows are read. Cells are divided by `delimiter`, a character of ASCII; by what the first
    // rows have for 0: comma, semicolon or tab.
    explicit CPDFCsvReader(std::string_view text, char delimiter = 0);

    // Reads the next row. False at the end, and for a row that breaks the rules of quotes, behind which nothing can be
    // read: status() tells.
    bool next(std::vector<std::string>& cells);

    // What is wrong with the text, with its line.
    const CPDFStatus& status() const { return m_status; }

private:
    void take_first_line(char delimiter);
    bool at_line_end() const;
    bool at_cell_end() const { return at_line_end() || m_text[m_at] == m_stops[0]; }
    void pass_line_end();
    bool read_cell(std::string& cell);
    bool read_quoted(std::string& cell);
    bool fail(size_t line, const char* what);

    std::string_view m_text;
    std::string m_stops;  // the divider, then what else ends a cell or may not stand in it
    size_t m_at = 0;
    size_t m_line = 1;
    CPDFStatus m_status;
};

// Fails, with the line, for text that is not UTF-8, as other programs save it, too.
CPDFStatus check_csv_text(std::string_view text);

// What one row says: an entry for every cell, but for empty ones unless they are kept. Fails when it has not as many cells
// as there are columns.
CPDFStatus data_of_row(const std::vector<std::string>& columns, std::vector<std::string>& cells,
                       const PDF_CSV_STYLE& style, CPDFFormData& out);

// Reads a file with exactly one row of values; the second in the dialect that it has. On failure `out` is empty.
CPDFStatus read_csv_row(std::string_view text, const PDF_CSV_STYLE& style, CPDFFormData& out);
CPDFStatus read_csv_data(std::string_view text, CPDFFormData& out);

// Appends one cell and, unless it is the first of its row, a comma before it: in quotes where it needs them so that no
// reader takes another character for the divider, and so is a first cell that is empty, since an empty line is no row.
void append_csv_cell(std::string& out, std::string_view text, bool is_first);
