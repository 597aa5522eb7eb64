// File names for many outputs, made from a pattern such as out/{id}.pdf.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/import/form_data.h"

// A pattern: text, and names of columns in braces; "{{" is a brace.
class OutputPattern {
public:
    // False when the pattern has a brace without its end or nothing between braces.
    bool parse(std::string_view pattern);

    // The columns that it names, each once.
    const std::vector<std::string>& columns() const { return m_columns; }
    bool names(std::string_view column) const;

    // The folder in which all outputs lie, as far as it has no placeholder: "out" for out/{id}.pdf, "" for {id}.pdf.
    std::string fixed_folder() const;

    // Makes the file name for one row. Fails when the row has no text for a placeholder or one that would name another
    // folder: path separators, control characters, "." and ".." are refused.
    CPDFStatus make_path(const CPDFFormData& row, std::string& path) const;

private:
    struct PART {
        bool is_column;
        std::string text;
    };

    std::vector<PART> m_parts;
    std::vector<std::string> m_columns;
};
