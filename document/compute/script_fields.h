// What scripts ask of the form.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class CPDFField;

struct PDF_SCRIPT_FIELDS {
    std::function<CPDFField*(std::string_view name)> find;  // by full name; null for none

    // What a check box or radio group that has options of its own exports: they say it in the place of its states.
    std::function<std::string(const CPDFField& field)> export_value;
};

// The texts of a field's value as scripts see it, several of a list only.
std::vector<std::string> script_values_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields);
// The same as one text; empty when it has none.
std::string script_value_of(const CPDFField& field, const PDF_SCRIPT_FIELDS& fields);
