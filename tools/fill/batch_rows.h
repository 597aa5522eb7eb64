// Hands out the rows of a batch, each with the file it goes to.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "formats/import/form_rows.h"
#include "tools/fill/data_rules.h"
#include "tools/fill/output_pattern.h"

class CPDFDocument;
struct FILL_ARGUMENTS;

struct BATCH_ROW {
    size_t number = 0;
    CPDFFormData data;   // without the columns that only name the output
    std::string output;  // empty when nothing is written
    CPDFStatus status;   // why the row can't be done
};

// Rows come in their order, so that of two rows with one output name always the second is refused.
class BatchRows {
public:
    // `pattern` is borrowed, and null when nothing is written.
    explicit BatchRows(const OutputPattern* pattern) : m_pattern(pattern) {}

    // Opens the file with the rows, or standard input for "-"; false after a complaint.
    bool open(const std::string& path, const DATA_ARGUMENTS& reading);

    // Takes the values that every row has which says nothing else; false after a complaint.
    bool add_constants(CPDFDocument& document, const FILL_ARGUMENTS& arguments);

    // Complains about the columns of a CSV file that are neither fields nor in the pattern nor ignored, about what the
    // pattern names and no column has, and about what the map names wrongly; false when there are any.
    bool check_columns(CPDFDocument& document) const;

    // These files are not overwritten.
    void protect(const std::string& path);

    size_t count() const { return m_rows.count(); }

    // Hands out the next row; false when there is none. Any thread, with a document of its own.
    bool take(CPDFDocument& document, BATCH_ROW& row);

    // Whether this is the first call with that name. Any thread.
    bool is_new(const std::string& name);

private:
    bool check_map(CPDFDocument& document, const std::vector<std::string>* columns) const;
    bool has_use(CPDFDocument& document, const std::string& column) const;
    void drop_output_names(CPDFDocument& document, CPDFFormData& data) const;
    bool is_protected(const std::string& path) const;
    CPDFStatus claim_output(const PDF_FORM_ROW& row, std::string& output);

    struct FILE_ID {
        uint64_t device;
        uint64_t number;
    };

    const OutputPattern* m_pattern;  // borrowed
    std::string m_path;
    std::mutex m_mutex;
    CPDFFormRows m_rows;
    std::string m_map_path;
    DataRules m_rules;
    CPDFFormData m_constants;
    std::unordered_map<std::string, size_t> m_row_of;  // by output
    std::unordered_set<std::string> m_names;           // that is_new knows
    std::vector<FILE_ID> m_protected;
};
