#include "formats/import/csv.h"

#include <algorithm>

#include "core/limits.h"
#include "document/lookup/field_text.h"

// file  = row *(line-end row)
// row   = cell *(divider cell)
// cell  = *any-but-divider-quote-line-end / quote *(any-but-quote / quote quote) quote

namespace {

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::string_view DIVIDER_LINE = "sep=";

CPDFStatus failure(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(sentence));
}

// The divider that makes the first rows equally long, or else the row of names the longest; the comma where none makes
// more than one cell of that.
char find_divider(std::string_view text)
{
    char best = ',';
    std::pair<bool, size_t> best_fit = {false, 1};
    std::vector<std::string> names;
    std::vector<std::string> cells;
    for (const char divider : {';', '\t', ','}) {  // commas also stand in names and numbers
        CPDFCsvReader reader(text, divider);
        if (!reader.next(names) || names.size() < 2)
            continue;
        const bool is_even = reader.next(cells) && cells.size() == names.size();
        const std::pair<bool, size_t> fit = {is_even, names.size()};
        if (fit > best_fit) {
            best = divider;
            best_fit = fit;
        }
    }
    return best;
}

}  // namespace

CPDFCsvReader::CPDFCsvReader(std::string_view text, char delimiter) : m_text(text), m_stops(",\"\r\n")
{
    if (text.starts_with(UTF8_MARK))
        m_at = UTF8_MARK.size();
    take_first_line(delimiter);
}

void CPDFCsvReader::take_first_line(char delimiter)
{
    const std::string_view rest = m_text.substr(m_at);
    const size_t end = DIVIDER_LINE.size() + 1;
    const bool says_it =
        rest.starts_with(DIVIDER_LINE) && rest.size() > end && (rest[end] == '\r' || rest[end] == '\n');
    if (says_it)
        m_at += end;
    if (delimiter == 0)
        delimiter = says_it ? rest[end - 1] : find_divider(rest);
    m_stops[0] = delimiter;
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
        ++m_at;  // the divider
    }
    pass_line_end();
    return true;
}

// Ends at a divider or the end of the line.
bool CPDFCsvReader::read_cell(std::string& cell)
{
    if (m_at < m_text.size() && m_text[m_at] == '"')
        return read_quoted(cell);
    const size_t end = std::min(m_text.find_first_of(m_stops, m_at), m_text.size());
    cell = m_text.substr(m_at, end - m_at);
    m_at = end;
    return at_cell_end() || fail(m_line, "a quote stands inside a cell that has none around it");
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
    return at_cell_end() || fail(m_line, "text follows the closing quote of a cell");
}

CPDFStatus check_csv_text(std::string_view text)
{
    const size_t nul = text.find('\0');
    const size_t at = std::min(find_malformed(text), nul);
    if (at == std::string_view::npos)
        return {};
    const auto lines = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    return failure("line " + std::to_string(lines + 1) + ": the text is not UTF-8: save it as \"CSV UTF-8\"");
}

CPDFStatus data_of_row(const std::vector<std::string>& columns, std::vector<std::string>& cells,
                       const PDF_CSV_STYLE& style, CPDFFormData& out)
{
    out.clear();
    if (cells.size() != columns.size()) {
        return failure("it has " + std::to_string(cells.size()) + (cells.size() == 1 ? " cell" : " cells") +
                       ", not one for each of the " + std::to_string(columns.size()) + " columns");
    }
    for (size_t i = 0; i < cells.size(); ++i) {
        if (!cells[i].empty() || style.keeps_empty_cells)
            out.push_back({columns[i], std::move(cells[i]), PDF_WORDS::STATES_FIRST, false, nullptr, true});
    }
    return {};
}

CPDFStatus read_csv_data(std::string_view text, CPDFFormData& out)
{
    return read_csv_row(text, {}, out);
}

CPDFStatus read_csv_row(std::string_view text, const PDF_CSV_STYLE& style, CPDFFormData& out)
{
    out.clear();
    if (CPDFStatus status = check_csv_text(text); !status.ok())
        return status;
    CPDFCsvReader reader(text, style.delimiter);
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
    CPDFStatus status = data_of_row(columns, cells, style, out);
    if (!status.ok())
        status.text = "the row of values is wrong: " + status.text;
    return status;
}

void append_csv_cell(std::string& out, std::string_view text, bool is_first)
{
    if (!is_first)
        out += ',';
    const bool looks_special = text.starts_with(UTF8_MARK) || text.starts_with(DIVIDER_LINE) || text.empty();
    if (text.find_first_of(",;\t\"\r\n") == std::string_view::npos && !(is_first && looks_special)) {
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
