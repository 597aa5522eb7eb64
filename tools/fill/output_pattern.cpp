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
    m_parts.emplace_back();
    for (size_t at = 0; at < pattern.size(); ++at) {
        if (pattern[at] != '{' || pattern.substr(at, 2) == "{{") {
            m_parts.back().text += pattern[at];
            at += pattern[at] == '{';
            continue;
        }
        const size_t end = pattern.find('}', at);
        if (end == std::string_view::npos || end == at + 1)
            return false;
        const PART part = placeholder(pattern.substr(at + 1, end - at - 1));
        if (part.kind == PART::COLUMN && !names(part.text))
            m_columns.push_back(part.text);
        m_parts.push_back(part);
        m_parts.emplace_back();
        at = end;
    }
    return true;
}

OutputPattern::PART OutputPattern::placeholder(std::string_view name)
{
    constexpr std::string_view ROW = "row";
    constexpr std::string_view PADDED = "row:0";
    constexpr size_t MOST_DIGITS = 2;  // of the number of digits
    const std::string_view digits = name.substr(std::min(PADDED.size(), name.size()));
    const bool is_padded = name.starts_with(PADDED) && !digits.empty() && digits.size() <= MOST_DIGITS &&
                           digits.find_first_not_of("0123456789") == std::string_view::npos;
    if (name == ROW || is_padded)
        return {PART::NUMBER, "", is_padded ? std::stoul(std::string(digits)) : 0};
    return {PART::COLUMN, std::string(name), 0};
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

CPDFStatus OutputPattern::append_column(const std::string& name, const CPDFFormData& row, std::string& path)
{
    const auto named = [&name](const PDF_FORM_ENTRY& entry) { return entry.name == name; };
    const auto entry = std::find_if(row.begin(), row.end(), named);
    const bool is_list = entry != row.end() && std::holds_alternative<std::vector<std::string>>(entry->value);
    const std::string text = entry == row.end() || is_list ? "" : texts_of(entry->value)[0];
    const char* fault = is_list ? "is a list" : fault_of(text);
    if (fault)
        return refuse_path("the value of " + in_quotes(name) + " can't be part of a file name: it " + fault);
    path += text;
    return {};
}

CPDFStatus OutputPattern::make_path(const CPDFFormData& row, size_t number, std::string& path) const
{
    std::string made;
    CPDFStatus status;
    for (const PART& part : m_parts) {
        const std::string digits = part.kind == PART::NUMBER ? std::to_string(number) : "";
        if (part.kind == PART::COLUMN)
            status = append_column(part.text, row, made);
        else
            made.append(part.digits - std::min(part.digits, digits.size()), '0').append(digits).append(part.text);
        if (!status.ok())
            return status;
    }
    if (has_dot_folder(std::string_view(made).substr(fixed_folder().size())))
        return refuse_path("the output " + made + " has dots that stand for a folder");
    path = std::move(made);
    return {};
}
