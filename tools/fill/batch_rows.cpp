#include "tools/fill/batch_rows.h"

#include <algorithm>
#include <sys/stat.h>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "document/xfa/data_value.h"
#include "tools/batch/output_names.h"
#include "tools/verb.h"

namespace {

// Whether the name is that of a value in the XFA data of a form that has nothing else.
bool has_xfa_value(CPDFDocument& document, const std::string& name)
{
    std::vector<CPDFStatus> each;
    return document.has_only_xfa() && document.check_xfa_values({{name, ""}}, PDF_FILL::FORCE, each).ok() &&
           each[0].ok();
}

}  // namespace

bool BatchRows::open(const std::string& path)
{
    m_path = path;
    const CPDFStatus status = m_rows.open(path);
    if (!status.ok())
        complain(path, status.text);
    return status.ok();
}

bool BatchRows::check_columns(CPDFDocument& document) const
{
    const std::vector<std::string>* columns = m_rows.columns();
    if (!columns)
        return true;
    bool good = true;
    const auto refuse = [&](const std::string& sentence) {
        complain(m_path, sentence);
        good = false;
    };
    for (const std::string& column : *columns) {
        if (m_pattern && !document.field(column) && !m_pattern->names(column) && !has_xfa_value(document, column))
            refuse(no_such_field(column).text + ", and no output name (-o) uses it");
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
    drop_unused(document, row.data);
    return true;
}

// Columns that are there for the output alone. Where that has no pattern any may be.
void BatchRows::drop_unused(CPDFDocument& document, CPDFFormData& data)
{
    std::erase_if(data, [&](const PDF_FORM_ENTRY& entry) {
        if ((m_pattern && !m_pattern->names(entry.name)) || document.field(entry.name) ||
            has_xfa_value(document, entry.name))
            return false;
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_pattern && m_noted.insert(entry.name).second)
            complain(m_path, "note: " + no_such_field(entry.name).text);
        return true;
    });
}
