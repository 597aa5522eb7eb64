// File names for many outputs, made from a pattern such as out/{id}.pdf.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/import/form_data.h"

// A pattern: text, and names of columns in braces; "{{" is a brace, {row} the number of the row, and {row:06} that with zeros in
// front, so that it has six digits at least.
class OutputPattern {
public:
    // False when the pattern has a brace without its end or nothing between braces.
    bool parse(std::string_view pattern);

    // The columns that it names, each once.
    const std::vector<std::string>& columns() const { return m_columns; }
    bool names(std::string_view column) const;

    // Whether rows can have different names.
    bool differs() const { return m_parts.size() > 1; }

    // The folder in which all outputs lie, as far as it has no placeholder: "out" for out/{id}.pdf, "" for {id}.pdf.
    std::string fixed_folder() const;

    // Makes the file name for one row. Fails when the row has no text for a placeholder or one that would name another
    // folder: path separators, control characters, "." and ".." are refused.
    CPDFStatus make_path(const CPDFFormData& row, size_t number, std::string& path) const;

private:
    struct PART {
        enum { TEXT, COLUMN, NUMBER } kind = TEXT;
        std::string text;
        size_t digits = 0;  // of a number, at least
    };

    static PART placeholder(std::string_view name);
    static CPDFStatus append_column(const std::string& name, const CPDFFormData& row, std::string& path);

    std::vector<PART> m_parts;
    std::vector<std::string> m_columns;
};
