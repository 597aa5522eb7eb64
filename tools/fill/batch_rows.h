// Hands out the rows of a batch, each with the file it goes to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "formats/import/form_rows.h"
#include "tools/fill/output_pattern.h"

class CPDFDocument;

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

    // Opens the file with the rows; false after a complaint.
    bool open(const std::string& path);

    // Complains about the columns of a CSV file that are neither fields nor in the pattern, and about what the pattern
    // names and no column has; false when there are any.
    bool check_columns(CPDFDocument& document) const;

    // These files are not overwritten.
    void protect(const std::string& path);

    // Complains about rows that have one output name; false when there are any.
    bool check_outputs();

    // From now on rows from `first` to `last` are handed out.
    void select(size_t first, size_t last);

    // How many rows are handed out.
    size_t count() const { return std::min(m_last, m_rows.count()) - std::min(m_first - 1, m_rows.count()); }

    // Hands out the next row; false when there is none. Any thread, with a document of its own.
    bool take(CPDFDocument& document, BATCH_ROW& row);

private:
    bool is_protected(const std::string& path) const;
    void drop_unused(CPDFDocument& document, CPDFFormData& data);
    CPDFStatus find_output(const PDF_FORM_ROW& row, std::string& output) const;

    struct FILE_ID {
        uint64_t device;
        uint64_t number;
    };

    const OutputPattern* m_pattern;  // borrowed
    std::string m_path;
    std::mutex m_mutex;
    CPDFFormRows m_rows;
    size_t m_first = 1;
    size_t m_last = SIZE_MAX;
    std::set<std::string> m_noted;  // columns that are no fields
    std::vector<FILE_ID> m_protected;
};
