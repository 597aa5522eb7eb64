#include "formats/import/csv.h"

#include "core/limits.h"

// file  = row *(line-end row)
// row   = cell *("," cell)
// cell  = *any-but-comma-quote-line-end / quote *(any-but-quote / quote quote) quote

namespace {

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::string_view UTF16_MARKS[] = {"\xFF\xFE", "\xFE\xFF"};

bool has_utf16_mark(std::string_view text)
{
    return text.starts_with(UTF16_MARKS[0]) || text.starts_with(UTF16_MARKS[1]);
}

CPDFStatus failure(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(sentence));
}

}  // namespace

CPDFCsvReader::CPDFCsvReader(std::string_view text) : m_text(text)
{
    if (has_utf16_mark(text))
        fail(1, "the text is UTF-16, not UTF-8");
    if (text.starts_with(UTF8_MARK))
        m_at = UTF8_MARK.size();
}

bool CPDFCsvReader::fail(size_t line, const char* what)
{
    m_status = failure("line " + std::to_string(line) + ": " + what);
    return false;
}

bool CPDFCsvReader::at_line_end() const
{
    return m_at == m_text.size() || m_text[m_at] == '\n' || m_text[m_at] == '\r';
}

void CPDFCsvReader::pass_line_end()
{
    if (m_at == m_text.size())
        return;
    m_at += m_text.substr(m_at, 2) == "\r\n" ? 2 : 1;
    ++m_line;
}

bool CPDFCsvReader::next(std::vector<std::string>& cells)
{
    cells.clear();
    while (m_at < m_text.size() && at_line_end())
        pass_line_end();
    if (m_at == m_text.size() || !m_status.ok())
        return false;
    for (;;) {
        if (cells.size() == LIMIT_DATA_VALUES)
            return fail(m_line, "a row has too many cells");
        if (!read_cell(cells.emplace_back()))
            return false;
        if (at_line_end())
            break;
        ++m_at;  // the comma
    }
    pass_line_end();
    return true;
}

// Ends at a comma or the end of the line.
bool CPDFCsvReader::read_cell(std::string& cell)
{
    if (m_at < m_text.size() && m_text[m_at] == '"')
        return read_quoted(cell);
    const size_t end = std::min(m_text.find_first_of(",\"\r\n", m_at), m_text.size());
    cell = m_text.substr(m_at, end - m_at);
    m_at = end;
    return at_line_end() || m_text[m_at] == ',' || fail(m_line, "a quote stands inside a cell that has none around it");
}

bool CPDFCsvReader::read_quoted(std::string& cell)
{
    const size_t first_line = m_line;
    for (++m_at;;) {
        const size_t quote = m_text.find('"', m_at);
        if (quote == std::string_view::npos)
            return fail(first_line, "a quoted cell has no end");
        for (size_t i = m_at; i < quote; ++i)
            m_line += m_text[i] == '\n' || (m_text[i] == '\r' && m_text[i + 1] != '\n');
        cell += m_text.substr(m_at, quote - m_at);
        m_at = quote + 1;
        if (m_text.substr(m_at, 1) != "\"")
            break;
        cell += '"';
        ++m_at;
    }
    return at_line_end() || m_text[m_at] == ',' || fail(m_line, "text follows the closing quote of a cell");
}

CPDFStatus data_of_row(const std::vector<std::string>& columns, std::vector<std::string>& cells, CPDFFormData& out)
{
    out.clear();
    if (cells.size() != columns.size()) {
        return failure("it has " + std::to_string(cells.size()) + (cells.size() == 1 ? " cell" : " cells") +
                       ", not one for each of the " + std::to_string(columns.size()) + " columns");
    }
    for (size_t i = 0; i < cells.size(); ++i) {
        if (!cells[i].empty())
            out.push_back({columns[i], std::move(cells[i])});
    }
    return {};
}

CPDFStatus read_csv_data(std::string_view text, CPDFFormData& out)
{
    out.clear();
    CPDFCsvReader reader(text);
    std::vector<std::string> columns;
    std::vector<std::string> cells;
    std::vector<std::string> more;
    const bool has_row = reader.next(columns) && reader.next(cells);
    const bool has_more = has_row && reader.next(more);
    if (!reader.status().ok())
        return reader.status();
    if (columns.empty())
        return failure("the file has no row of names");
    if (!has_row)
        return failure("there is no row of values behind the row of names");
    if (has_more)
        return failure("there is more than one row of values; a batch takes such a file");
    CPDFStatus status = data_of_row(columns, cells, out);
    if (!status.ok())
        status.text = "the row of values is wrong: " + status.text;
    return status;
}

void append_csv_cell(std::string& out, std::string_view text, bool is_first)
{
    if (!is_first)
        out += ',';
    const bool has_mark = text.starts_with(UTF8_MARK) || has_utf16_mark(text);
    if (text.find_first_of(",\"\r\n") == std::string_view::npos && !has_mark && !(is_first && text.empty())) {
        out += text;
        return;
    }
    out += '"';
    for (const char c : text) {
        out += c;
        out += c == '"' ? "\"" : "";
    }
    out += '"';
}
