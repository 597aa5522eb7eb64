#include "tools/fill/output_pattern.h"

#include <algorithm>

#include "document/lookup/field_text.h"
#include "tools/terminal_text.h"

namespace {

// Why `text` can't be part of a file name; null when it can. A backslash separates folders where the files may be taken.
const char* fault_of(const std::string& text)
{
    if (text.empty())
        return "is empty";
    if (text.find_first_of("/\\") != std::string::npos)
        return "has a path separator";
    if (text == "." || text.find("..") != std::string::npos)
        return "has dots that stand for a folder";
    return printable(text) != text ? "has a control character or is not UTF-8" : nullptr;
}

CPDFStatus refuse_path(std::string why)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(why));
}

// Placeholders side by side can make up what none of them may be alone.
bool has_dot_folder(std::string_view path)
{
    for (size_t at = 0; at <= path.size();) {
        const size_t end = std::min(path.find('/', at), path.size());
        const std::string_view name = path.substr(at, end - at);
        if (name == "." || name == "..")
            return true;
        at = end + 1;
    }
    return false;
}

}  // namespace

bool OutputPattern::parse(std::string_view pattern)
{
    *this = OutputPattern();
    m_parts.push_back({false, ""});
    for (size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] != '{' || pattern.substr(at, 2) == "{{") {
            m_parts.back().text += pattern[at];
            at += pattern[at] == '{';
            continue;
        }
        const size_t end = pattern.find('}', at);
        if (end == std::string_view::npos || end == at + 1)
            return false;
        const std::string column(pattern.substr(at + 1, end - at - 1));
        m_parts.push_back({true, column});
        m_parts.push_back({false, ""});
        if (!names(column))
            m_columns.push_back(column);
        at = end;
    }
    return true;
}

bool OutputPattern::names(std::string_view column) const
{
    return std::find(m_columns.begin(), m_columns.end(), column) != m_columns.end();
}

std::string OutputPattern::fixed_folder() const
{
    const std::string& head = m_parts.front().text;
    const size_t slash = head.rfind('/');
    return slash == std::string::npos ? "" : head.substr(0, std::max<size_t>(slash, 1));
}

CPDFStatus OutputPattern::make_path(const CPDFFormData& row, std::string& path) const
{
    std::string made;
    for (const PART& part : m_parts) {
        if (!part.is_column) {
            made += part.text;
            continue;
        }
        const auto named = [&part](const PDF_FORM_ENTRY& entry) { return entry.name == part.text; };
        const auto entry = std::find_if(row.begin(), row.end(), named);
        const bool is_list = entry != row.end() && std::holds_alternative<std::vector<std::string>>(entry->value);
        const std::string text = entry == row.end() || is_list ? "" : texts_of(entry->value)[0];
        const char* fault = is_list ? "is a list" : fault_of(text);
        if (fault)
            return refuse_path("the value of " + in_quotes(part.text) + " can't be part of a file name: it " + fault);
        made += text;
    }
    if (has_dot_folder(std::string_view(made).substr(fixed_folder().size())))
        return refuse_path("the output " + made + " has dots that stand for a folder");
    path = std::move(made);
    return {};
}
