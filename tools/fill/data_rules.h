// How fill reads its data: the options, and what they make of the names and values of a file.
#pragma once

#include <string>

#include "formats/import/column_map.h"
#include "formats/import/csv.h"
#include "tools/verb.h"

class CPDFDocument;

struct DATA_ARGUMENTS {
    COMMAND_WORD delimiter;
    COMMAND_WORD list_separator{"|"};
    COMMAND_WORD empty{"keep"};
    COMMAND_WORD map;
    bool ignore_unknown = false;
};

// Adds the options --delimiter, --list-separator, --empty, --map and --ignore-unknown.
void add_data_options(CLI::App& verb, DATA_ARGUMENTS& arguments);

// Whether a field has this name, or a value in the XFA data of a form that has nothing else.
bool is_known_name(CPDFDocument& document, const std::string& name);

class DataRules {
public:
    // Takes what the command line says; the refusal is one of wrong usage.
    CPDFStatus set(const DATA_ARGUMENTS& arguments);

    // Opens the map, if there is one; false after a complaint.
    bool open(const DATA_ARGUMENTS& arguments);

    const PDF_CSV_STYLE& style() const { return m_style; }
    const CPDFColumnMap& map() const { return m_map; }
    bool ignores_unknown() const { return m_ignores_unknown; }

    // Makes of what a file says what its fields take: columns become fields, names that no field has go where they are
    // ignored, cells become lists or what clears a field. Refuses what can't be converted. Any thread, with a document
    // of its own.
    CPDFStatus shape(CPDFDocument& document, CPDFFormData& data) const;

    // The same without the map.
    void fit(CPDFDocument& document, CPDFFormData& data) const;

private:
    PDF_CSV_STYLE m_style;
    std::string m_list_separator;
    bool m_ignores_unknown = false;
    CPDFColumnMap m_map;
};
