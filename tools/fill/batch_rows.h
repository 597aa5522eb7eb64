// Hands out the rows of a batch, each with the file it goes to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "formats/import/form_rows.h"
#include "tools/fill/data_options.h"
#include "tools/fill/output_pattern.h"

class CPDFDocument;
struct FILL_ARGUMENTS;

struct BATCH_ROW {
    size_t number = 0;
    CPDFFormData data;   // without the columns that only name the output
    std::string output;  // empty when nothing is written
    CPDFStatus status;   // why the row can't be done
};

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

    // Complains about rows that have one output name; false when there are any.
    bool check_outputs();

    // From now on rows from `first` to `last` are handed out.
    void select(size_t first, size_t last);

    // What the file is called in complaints.
    const std::string& path() const { return m_path; }

    // How many rows are handed out.
    size_t count() const { return std::min(m_last, m_rows.count()) - std::min(m_first - 1, m_rows.count()); }

    // Hands out the next row; false when there is none. Any thread, with a document of its own.
    bool take(CPDFDocument& document, BATCH_ROW& row);

    // Whether this is the first call with that name. Any thread.
    bool is_new(const std::string& name);

private:
    bool check_map(CPDFDocument& document, const std::vector<std::string>* columns) const;
    bool has_use(CPDFDocument& document, const std::string& column) const;
    void drop_output_names(CPDFDocument& document, CPDFFormData& data);
    bool ignores_unknown() const { return m_rules.unknown == PDF_UNKNOWN_NAMES::IGNORE; }
    bool is_protected(const std::string& path) const;
    CPDFStatus find_output(const PDF_FORM_ROW& row, std::string& output) const;

    struct FILE_ID {
        uint64_t device;
        uint64_t number;
    };

    const OutputPattern* m_pattern;  // borrowed
    std::string m_path;
    std::mutex m_mutex;
    CPDFFormRows m_rows;
    std::string m_map_path;
    PDF_DATA_RULES m_rules;
    CPDFFormData m_constants;
    size_t m_first = 1;
    size_t m_last = SIZE_MAX;
    std::unordered_set<std::string> m_names;  // that is_new knows
    std::vector<FILE_ID> m_protected;
};
