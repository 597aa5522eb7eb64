#include "formats/data_rules.h"

#include <unordered_set>
#include <utility>

#include "document/document.h"
#include "document/xfa/data_value.h"
#include "formats/field_cells.h"

std::vector<bool> known_names(CPDFDocument& document, const CPDFFormData& data)
{
    std::vector<bool> known;
    std::vector<size_t> places;  // in `data`, of the paths
    std::vector<PDF_XFA_VALUE> paths;
    for (const PDF_FORM_ENTRY& entry : data) {
        known.push_back(document.field(entry.name) != nullptr);
        if (known.back())
            continue;
        places.push_back(known.size() - 1);
        paths.push_back({entry.name, ""});
    }
    std::vector<CPDFStatus> each;
    if (paths.empty() || !document.has_only_xfa() || !document.check_xfa_values(paths, PDF_FILL::FORCE, each).ok())
        return known;
    for (size_t i = 0; i < places.size(); ++i)
        known[places[i]] = each[i].ok();
    return known;
}

bool is_known_name(CPDFDocument& document, const std::string& name)
{
    PDF_FORM_ENTRY entry;
    entry.name = name;
    return known_names(document, {entry})[0];
}

CPDFStatus shape_data(CPDFDocument& document, const PDF_DATA_RULES& rules, CPDFFormData& data)
{
    CPDFStatus status = rules.map.apply(data);
    fit_data(document, rules, data);
    return status;
}

void fit_data(CPDFDocument& document, const PDF_DATA_RULES& rules, CPDFFormData& data)
{
    if (rules.unknown == PDF_UNKNOWN_NAMES::IGNORE) {
        const std::vector<bool> known = known_names(document, data);
        CPDFFormData kept;
        for (size_t i = 0; i < data.size(); ++i) {
            if (known[i])
                kept.push_back(std::move(data[i]));
        }
        data = std::move(kept);
    }
    fit_cells(document, rules.list_separator, data);
}

void add_constants(CPDFDocument& document, const CPDFFormData& constants, CPDFFormData& data)
{
    if (constants.empty())
        return;
    std::unordered_set<const CPDFField*> fields;
    std::unordered_set<std::string> paths;  // of XFA data
    for (const PDF_FORM_ENTRY& entry : data) {
        if (const CPDFField* field = document.field(entry.name))
            fields.insert(field);
        else
            paths.insert(entry.name);
    }
    for (const PDF_FORM_ENTRY& entry : constants) {
        const CPDFField* const field = document.field(entry.name);
        if (field ? !fields.contains(field) : !paths.contains(entry.name))
            data.push_back(entry);
    }
}
