#include "tools/extract/form_table.h"

#include <algorithm>
#include <cstring>

#include "formats/import/csv.h"
#include "tools/verb.h"

namespace {

// What stands before each line that waits.
struct LINE_HEAD {
    size_t size;
    size_t columns;
};

}  // namespace

CPDFStatus FormTable::open(const std::string& path)
{
    m_path = path == "-" ? "" : path;
    m_names = "file";
    if (m_style.columns) {
        m_columns = *m_style.columns;
        std::vector<const std::string*> names(m_columns.size());
        for (const auto& [name, place] : m_columns)
            names[place] = &name;
        for (const std::string* name : names)
            append_csv_cell(m_names, *name, false);
    }
    CPDFStatus status = m_style.is_json ? CPDFStatus() : m_rows.open(path);
    return status.ok() && !m_path.empty() ? m_table.open(path) : status;
}

void FormTable::write(std::string_view text)
{
    if (m_path.empty())
        put(text);
    else
        m_table.put(text);
}

// The cells in the places of their columns; new names get the next ones.
std::string FormTable::line_of(const std::string& file, const FORM_ROW& row)
{
    std::vector<std::string_view> cells(m_columns.size());
    for (const FORM_ROW::CELL& cell : row.cells) {
        const auto [column, is_new] = m_columns.emplace(cell.name, m_columns.size());
        if (is_new)
            append_csv_cell(m_names, cell.name, false);
        cells.resize(std::max(cells.size(), m_columns.size()));
        cells[column->second] = std::string_view(row.text).substr(cell.begin, cell.size);
    }
    std::string line;
    append_csv_cell(line, file, true);
    for (const std::string_view cell : cells)
        line.append(",").append(cell);
    return line;
}

void FormTable::add(const std::string& file, const FORM_ROW& row)
{
    if (m_style.is_json) {
        write(row.text);
        return;
    }
    const std::string line = line_of(file, row);
    const LINE_HEAD head = {line.size(), m_columns.size()};
    m_rows.put({reinterpret_cast<const char*>(&head), sizeof head});
    m_rows.put(line);
}

CPDFStatus FormTable::write_lines()
{
    std::string_view rows;
    if (CPDFStatus status = m_rows.finish(rows); !status.ok())
        return status;
    write(m_names + "\r\n");
    while (!rows.empty()) {
        LINE_HEAD head = {};
        std::memcpy(&head, rows.data(), sizeof head);
        write(rows.substr(sizeof head, head.size));
        write(std::string(m_columns.size() - head.columns, ',') + "\r\n");
        rows.remove_prefix(sizeof head + head.size);
    }
    return {};
}

CPDFStatus FormTable::finish()
{
    CPDFStatus status = m_style.is_json ? CPDFStatus() : write_lines();
    return status.ok() && !m_path.empty() ? m_table.finish_as(m_path) : status;
}
