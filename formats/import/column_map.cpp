#include "formats/import/column_map.h"

#include <nlohmann/json.hpp>

#include "document/lookup/field_text.h"
#include "formats/import/data_text.h"
#include "formats/import/json_value.h"

namespace {

using nlohmann::json;
using TARGET = CPDFColumnMap::TARGET;

CPDFStatus failure(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, std::move(sentence));
}

CPDFStatus read_conversion(const std::string& name, const json& value, TARGET& target)
{
    if (name == "upper" && value.is_boolean()) {
        if (!value.get<bool>())
            return {};
    } else if (name == "upper" || !value.is_string()) {
        return failure(in_quotes(name) + (name == "upper" ? " is true or false" : " takes a text"));
    }
    return make_conversion(name, value.is_string() ? value.get<std::string>() : "", target.conversions.emplace_back());
}

// A name of a field, or an object with one and conversions.
CPDFStatus read_target(const json& value, std::vector<TARGET>& targets)
{
    TARGET& target = targets.emplace_back();
    if (value.is_string()) {
        target.field = value.get<std::string>();
        return {};
    }
    if (!value.is_object() || !value.contains("field") || !value["field"].is_string())
        return failure("it is no name of a field, no object with \"field\", no list of these and not null");
    for (const auto& [name, part] : value.items()) {
        if (name == "field")
            target.field = part.get<std::string>();
        else if (CPDFStatus status = read_conversion(name, part, target); !status.ok())
            return status;
    }
    return {};
}

CPDFStatus read_targets(const json& value, std::vector<TARGET>& targets)
{
    CPDFStatus status;
    if (value.is_array()) {
        for (size_t i = 0; i < value.size() && status.ok(); ++i)
            status = read_target(value[i], targets);
    } else if (!value.is_null()) {
        status = read_target(value, targets);
    }
    return status;
}

// Texts are converted, true and false are not.
CPDFStatus convert(const TARGET& target, CPDFValue& value)
{
    std::vector<std::string> texts = texts_of(value);
    for (const PDF_CELL_CONVERSION& conversion : target.conversions) {
        for (std::string& text : texts) {
            if (CPDFStatus status = convert_cell(conversion, text); !status.ok())
                return status;
        }
    }
    if (std::holds_alternative<std::string>(value))
        value = std::move(texts.front());
    else if (std::holds_alternative<std::vector<std::string>>(value))
        value = std::move(texts);
    return {};
}

}  // namespace

CPDFStatus CPDFColumnMap::open(const std::string& path)
{
    CPDFDataText file;
    CPDFStatus status = file.open(path);
    return status.ok() ? read_columns(file.text()) : status;
}

CPDFStatus CPDFColumnMap::read(std::string_view text)
{
    CPDFDataText converted;
    CPDFStatus status = converted.take(text);
    return status.ok() ? read_columns(converted.text()) : status;
}

CPDFStatus CPDFColumnMap::read_columns(std::string_view text)
{
    m_targets.clear();
    json map;
    if (CPDFStatus status = parse_json(text, map); !status.ok())
        return status;
    if (!map.is_object())
        return failure("a map is one object of columns and their fields");
    for (const auto& [column, value] : map.items()) {
        if (CPDFStatus status = read_targets(value, m_targets[column]); !status.ok())
            return failure("the column " + in_quotes(column) + ": " + status.text);
    }
    return {};
}

const std::vector<TARGET>* CPDFColumnMap::targets_of(const std::string& column) const
{
    const auto found = m_targets.find(column);
    return found == m_targets.end() ? nullptr : &found->second;
}

CPDFStatus CPDFColumnMap::apply(CPDFFormData& data) const
{
    if (m_targets.empty())
        return {};
    CPDFStatus all;
    CPDFFormData mapped;
    for (PDF_FORM_ENTRY& entry : data) {
        const std::vector<TARGET>* const targets = targets_of(entry.name);
        if (!targets) {
            mapped.push_back(std::move(entry));
            continue;
        }
        for (const TARGET& target : *targets) {
            mapped.push_back(entry);
            mapped.back().name = target.field;
            const CPDFStatus status = convert(target, mapped.back().value);
            if (!status.ok())
                all = failure((all.ok() ? "" : all.text + "; ") + "the column " + in_quotes(entry.name) + ": " +
                              status.text);
        }
    }
    data = std::move(mapped);
    return all;
}
