#include "formats/field_cells.h"

#include "document/document.h"
#include "document/lookup/field_options.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

bool takes_several(const CPDFField& field)
{
    return field_kind(field).id == KIND_LIST && (effective_flags(field) & FIELD_MULTI_SELECT);
}

namespace {

std::vector<std::string> split(const std::string& text, const std::string& separator)
{
    std::vector<std::string> parts;
    size_t at = 0;
    for (size_t end = 0; (end = text.find(separator, at)) != std::string::npos; at = end + separator.size())
        parts.push_back(text.substr(at, end - at));
    parts.push_back(text.substr(at));
    return parts;
}

void clear(const CPDFField& field, CPDFValue& value)
{
    if (field.m_type == FIELD_BUTTON && field_kind(field).takes_value)
        value = "Off";
    else if (field_kind(field).id == KIND_LIST)
        value = std::vector<std::string>();
}

}  // namespace

void fit_cells(CPDFDocument& document, const std::string& separator, CPDFFormData& data)
{
    for (PDF_FORM_ENTRY& entry : data) {
        const std::string* const text = std::get_if<std::string>(&entry.value);
        const bool has_several = text && !separator.empty() && text->find(separator) != std::string::npos;
        if (!entry.is_cell || !text || !(text->empty() || has_several))
            continue;
        const CPDFField* const field = document.field(entry.name);
        if (!field)
            continue;
        if (text->empty())
            clear(*field, entry.value);
        else if (takes_several(*field) && CPDFFieldOptions(*field).find(*text) < 0)
            entry.value = split(*text, separator);
    }
}
