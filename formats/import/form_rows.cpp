#include "formats/import/form_rows.h"

#include <algorithm>
#include <tuple>

#include "formats/import/json_data.h"

CPDFStatus CPDFFormRows::open(const std::string& path)
{
    const std::string suffix = suffix_of(path);
    if (suffix != ".csv" && suffix != ".jsonl")
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "the name of a file with many rows ends with .csv or .jsonl");
    m_json = suffix == ".jsonl";
    CPDFStatus status = m_file.open(path);
    if (!status.ok())
        return status;
    m_text = {reinterpret_cast<const char*>(m_file.data()), m_file.size()};
    status = start();
    if (!status.ok())
        return status;
    std::string_view line;
    while (m_json ? next_line(line) : m_csv.next(m_cells))
        ++m_count;
    if (!m_csv.status().ok())
        return m_csv.status();
    return start();
}

CPDFStatus CPDFFormRows::start()
{
    m_at = 0;
    m_csv = CPDFCsvReader(m_json ? std::string_view() : m_text);
    if (m_json || m_csv.next(m_columns))
        return {};
    return m_csv.status().ok() ? CPDFStatus::failed(PDF_CODE::BAD_DATA, "the file has no row of names")
                               : m_csv.status();
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
        if (!m_csv.next(m_cells))
            return false;
        status = data_of_row(m_columns, m_cells, row.data);
    }
    row.number = ++m_number;
    return true;
}

void CPDFFormRows::rewind()
{
    m_number = 0;
    std::ignore = start();  // which was good before
}
