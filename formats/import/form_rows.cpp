#include "formats/import/form_rows.h"

#include <algorithm>
#include <tuple>

#include "formats/import/json_data.h"

namespace {

// Takes empty cells off the end while there are more than `least`.
void drop_empty(std::vector<std::string>& cells, size_t least)
{
    while (cells.size() > least && cells.back().empty())
        cells.pop_back();
}

}  // namespace

CPDFStatus CPDFFormRows::open(const std::string& path, const PDF_CSV_STYLE& style)
{
    const std::string suffix = suffix_of(path);
    if (CPDFStatus status = check_no_spreadsheet(suffix); !status.ok())
        return status;
    if (path != "-" && suffix != ".csv" && suffix != ".tsv" && suffix != ".jsonl")
        return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                  "the name of a file with many rows ends with .csv, .tsv or .jsonl");
    CPDFStatus status = m_file.open(path);
    if (!status.ok())
        return status;
    const std::string_view text = m_file.text();
    const bool is_json =
        suffix == ".jsonl" || (path == "-" && text.substr(0, text.find_first_not_of(" \t\r\n") + 1).ends_with('{'));
    return count_rows(is_json ? PDF_ROW_FORMAT::JSON_LINES : PDF_ROW_FORMAT::CSV, style);
}

CPDFStatus CPDFFormRows::open_text(std::string_view text, PDF_ROW_FORMAT format, const PDF_CSV_STYLE& style)
{
    CPDFStatus status = m_file.take(text);
    return status.ok() ? count_rows(format, style) : status;
}

CPDFStatus CPDFFormRows::count_rows(PDF_ROW_FORMAT format, const PDF_CSV_STYLE& style)
{
    m_text = m_file.text();
    m_style = style;
    m_json = format == PDF_ROW_FORMAT::JSON_LINES;
    m_count = m_number = 0;
    CPDFStatus status = m_json ? CPDFStatus() : check_csv_text(m_text);
    if (status.ok())
        status = start();
    if (!status.ok())
        return status;
    std::string_view line;
    while (m_json ? next_line(line) : next_cells())
        ++m_count;
    if (!m_csv.status().ok())
        return m_csv.status();
    return start();
}

CPDFStatus CPDFFormRows::start()
{
    m_at = 0;
    m_csv = CPDFCsvReader(m_json ? std::string_view() : m_text, m_style.delimiter);
    if (m_json)
        return {};
    if (m_csv.next(m_columns)) {
        drop_empty(m_columns, 1);
        return {};
    }
    return m_csv.status().ok() ? CPDFStatus::failed(PDF_CODE::BAD_DATA, "the file has no row of names")
                               : m_csv.status();
}

// Spreadsheets write cells behind their last column, and rows behind the last one with values.
bool CPDFFormRows::next_cells()
{
    while (m_csv.next(m_cells)) {
        drop_empty(m_cells, m_columns.size());
        const auto is_empty = [](const std::string& cell) { return cell.empty(); };
        if (m_columns.size() == 1 || !std::all_of(m_cells.begin(), m_cells.end(), is_empty))
            return true;
    }
    return false;
}

bool CPDFFormRows::next_line(std::string_view& line)
{
    while (m_at < m_text.size()) {
        const size_t end = std::min(m_text.find('\n', m_at), m_text.size());
        line = m_text.substr(m_at, end - m_at);
        m_at = std::min(end + 1, m_text.size());
        if (line.find_first_not_of(" \t\r") != std::string_view::npos)
            return true;
    }
    return false;
}

bool CPDFFormRows::next(PDF_FORM_ROW& row)
{
    CPDFStatus& status = row.status;
    if (m_json) {
        std::string_view line;
        if (!next_line(line))
            return false;
        status = read_json_data(line, row.data);
        if (status.text.rfind("line 1, ", 0) == 0)
            status.text.erase(0, 8);
    } else {
        if (!next_cells())
            return false;
        status = data_of_row(m_columns, m_cells, m_style, row.data);
    }
    row.number = ++m_number;
    return true;
}

void CPDFFormRows::rewind()
{
    m_number = 0;
    std::ignore = start();  // which was good before
}
