// Data files with many rows, each of them the values of one filled form.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/import/csv.h"
#include "formats/import/data_text.h"
#include "formats/import/form_data.h"

struct PDF_FORM_ROW {
    size_t number = 0;  // from 1; the names of a CSV file and empty lines don't count
    CPDFFormData data;
    CPDFStatus status;  // failed for a row that can't be read; `data` is empty then
};

enum class PDF_ROW_FORMAT {
    CSV,
    JSON_LINES,
};

// Reads a CSV file, or one JSON object a line (.jsonl), row by row. It keeps no more than the file's bytes and one row.
class CPDFFormRows {
public:
    // Opens the file, which the suffix tells the form of, and counts its rows. "-" is standard input: JSON when that
    // begins with a brace. Fails for a CSV file that breaks the rules of quotes or is not UTF-8 anywhere.
    CPDFStatus open(const std::string& path, const PDF_CSV_STYLE& style = {});

    // The same with a text in memory, which is borrowed while rows are read.
    CPDFStatus open_text(std::string_view text, PDF_ROW_FORMAT format, const PDF_CSV_STYLE& style = {});

    size_t count() const { return m_count; }

    // The names in the first row of a CSV file; null for JSON, where every row has its own.
    const std::vector<std::string>* columns() const { return m_json ? nullptr : &m_columns; }

    // Reads the next row; false when there is none.
    bool next(PDF_FORM_ROW& row);

    // The next row is the first one again.
    void rewind();

private:
    CPDFStatus count_rows(PDF_ROW_FORMAT format, const PDF_CSV_STYLE& style);
    CPDFStatus start();
    bool next_line(std::string_view& line);
    bool next_cells();

    CPDFDataText m_file;
    PDF_CSV_STYLE m_style;
    std::string_view m_text;  // borrowed from m_file
    CPDFCsvReader m_csv{""};
    bool m_json = false;
    std::vector<std::string> m_columns;
    std::vector<std::string> m_cells;
    size_t m_at = 0;  // position in m_text of the next line of JSON
    size_t m_number = 0;
    size_t m_count = 0;
};
