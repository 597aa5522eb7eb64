#include "tools/fill/batch_rows.h"

#include <algorithm>
#include <sys/stat.h>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "tools/batch/output_names.h"
#include "tools/fill/fill_data.h"
#include "tools/fill/fill_internal.h"

bool BatchRows::open(const std::string& path, const DATA_ARGUMENTS& reading)
{
    m_path = path == "-" ? "standard input" : path;
    m_map_path = reading.map.text;
    if (!open_rules(reading, m_rules))
        return false;
    const CPDFStatus status = m_rows.open(path, m_rules.style);
    if (!status.ok())
        complain(m_path, status.text);
    return status.ok();
}

bool BatchRows::add_constants(CPDFDocument& document, const FILL_ARGUMENTS& arguments)
{
    return read_constants(document, arguments, m_rules, m_constants);
}

bool BatchRows::has_use(CPDFDocument& document, const std::string& column) const
{
    return !m_pattern || m_rules.map.targets_of(column) || ignores_unknown() || m_pattern->names(column) ||
           is_known_name(document, column);
}

// A map may be there for several files, and have more columns than this one where that is said.
bool BatchRows::check_map(CPDFDocument& document, const std::vector<std::string>* columns) const
{
    bool good = true;
    const auto refuse = [&](const std::string& sentence) {
        complain(m_map_path, sentence);
        good = false;
    };
    for (const auto& [column, targets] : m_rules.map.columns()) {
        if (columns && !ignores_unknown() && std::find(columns->begin(), columns->end(), column) == columns->end())
            refuse("the rows have no column " + in_quotes(column) + "; --ignore-unknown passes over it");
        for (const CPDFColumnMap::TARGET& target : targets) {
            if (!is_known_name(document, target.field))
                refuse("the column " + in_quotes(column) + ": " + document.no_field(target.field).text);
        }
    }
    return good;
}

bool BatchRows::check_columns(CPDFDocument& document) const
{
    const std::vector<std::string>* columns = m_rows.columns();
    bool good = check_map(document, columns);
    if (!columns)
        return good;
    const auto refuse = [&](const std::string& sentence) {
        complain(m_path, sentence);
        good = false;
    };
    for (const std::string& column : *columns) {
        if (!has_use(document, column))
            refuse(document.no_field(column).text +
                   ", and no output name (-o) uses it; --ignore-unknown passes over such columns");
    }
    for (const std::string& name : m_pattern ? m_pattern->columns() : std::vector<std::string>()) {
        const auto times = std::count(columns->begin(), columns->end(), name);
        if (times != 1)
            refuse("the output name uses " + in_quotes(name) + ", which " +
                   (times ? "more than one column has" : "is no column"));
    }
    return good;
}

void BatchRows::protect(const std::string& path)
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0)
        m_protected.push_back({info.st_dev, info.st_ino});
}

bool BatchRows::is_protected(const std::string& path) const
{
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0)
        return false;
    return std::any_of(m_protected.begin(), m_protected.end(),
                       [&](const FILE_ID& id) { return id.device == info.st_dev && id.number == info.st_ino; });
}

CPDFStatus BatchRows::find_output(const PDF_FORM_ROW& row, std::string& output) const
{
    std::string path;
    if (CPDFStatus status = m_pattern->make_path(row.data, row.number, path); !status.ok())
        return status;
    if (is_protected(path))
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "its output " + path + " is a file that the batch reads");
    output = std::move(path);
    return {};
}

bool BatchRows::check_outputs()
{
    constexpr size_t MOST = 1000;
    OutputNames names;
    size_t doubles = 0;
    const auto each_name = [&](const auto& take) {
        std::string path;
        for (PDF_FORM_ROW row; m_pattern && m_rows.next(row); row = PDF_FORM_ROW()) {
            if (row.status.ok() && m_pattern->make_path(row.data, row.number, path).ok())
                take(path, row.number);
        }
        m_rows.rewind();
    };
    each_name([&names](const std::string& path, size_t /*row*/) { names.add(path); });
    if (!names.look_closer())
        return true;
    each_name([&](const std::string& path, size_t row) {
        const size_t before = names.add_again(path, row);
        if (before && ++doubles <= MOST)
            complain(m_path, "row " + std::to_string(row) + ": its output " + path + " is that of row " +
                                 std::to_string(before) + ", too");
    });
    if (doubles > MOST)
        complain(m_path, std::to_string(doubles - MOST) + " more rows have the output of another one");
    return doubles == 0;
}

void BatchRows::select(size_t first, size_t last)
{
    m_first = first;
    m_last = last;
}

bool BatchRows::is_new(const std::string& name)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_names.insert(name).second;
}

bool BatchRows::take(CPDFDocument& document, BATCH_ROW& row)
{
    row = BATCH_ROW();
    PDF_FORM_ROW read;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        do {
            read = PDF_FORM_ROW();
            if (!m_rows.next(read) || read.number > m_last)
                return false;
        } while (read.number < m_first);
    }
    row.status = std::move(read.status);
    if (row.status.ok() && m_pattern)
        row.status = find_output(read, row.output);
    row.number = read.number;
    row.data = std::move(read.data);
    if (!row.status.ok())
        return true;
    drop_output_names(document, row.data);
    row.status = shape_data(document, m_rules, row.data);
    ::add_constants(document, m_constants, row.data);
    return true;
}

// Columns that are there for the output alone. Where that has no pattern any may be.
void BatchRows::drop_output_names(CPDFDocument& document, CPDFFormData& data)
{
    const auto may_be_dropped = [&](const PDF_FORM_ENTRY& entry) {
        return (!m_pattern || m_pattern->names(entry.name)) && !m_rules.map.targets_of(entry.name);
    };
    if (std::none_of(data.begin(), data.end(), may_be_dropped))
        return;
    const std::vector<bool> known = known_names(document, data);
    CPDFFormData kept;
    for (size_t i = 0; i < data.size(); ++i) {
        if (known[i] || !may_be_dropped(data[i]))
            kept.push_back(std::move(data[i]));
        else if (!m_pattern && !ignores_unknown() && is_new(data[i].name))
            complain(m_path, "note: " + document.no_field(data[i].name).text);
    }
    data = std::move(kept);
}
