// Which column of a table belongs to which field.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "formats/import/cell_conversion.h"
#include "formats/import/form_data.h"

// A mapping of columns, kept in JSON:
//
//     {"Name": "person.name",                                                     the field of the column
//      "Born": {"field": "birth", "date": "dd.mm.yyyy>mm/dd/yyyy"},               with a conversion
//      "Town": [{"field": "town", "upper": true}, "address.town"],                several fields
//      "Notes": null}                                                             no field
class CPDFColumnMap {
public:
    struct TARGET {
        std::string field;
        std::vector<PDF_CELL_CONVERSION> conversions;  // one after the other
    };

    // Reads the file; what it says wrongly is refused by the column.
    CPDFStatus open(const std::string& path);

    // The same with the text of such a file.
    CPDFStatus read(std::string_view text);

    // What becomes of a column; null for one that is not named here, which is that of the field with its name.
    const std::vector<TARGET>* targets_of(const std::string& column) const;
    const std::unordered_map<std::string, std::vector<TARGET>>& columns() const { return m_targets; }

    // Makes entries for fields of entries for columns. Refuses what can't be converted, each in a sentence.
    CPDFStatus apply(CPDFFormData& data) const;

private:
    CPDFStatus read_columns(std::string_view text);

    std::unordered_map<std::string, std::vector<TARGET>> m_targets;
};
