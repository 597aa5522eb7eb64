// The manifest of a batch: a line of JSON for each row that ended, by which a run that was killed goes on.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "file/status.h"
#include "formats/import/form_data.h"
#include "tools/batch/batch_result.h"

// Lines are appended as a whole, so that several runs may share a file. A line that is no JSON, such as one that a killed run could not
// end, counts as none, and its row is done again.
class BatchManifest {
public:
    enum class START {
        NEW,
        RESUME,
        AGAIN,  // what is there goes
    };

    BatchManifest() = default;
    ~BatchManifest();
    BatchManifest(const BatchManifest&) = delete;
    BatchManifest& operator=(const BatchManifest&) = delete;

    // Opens the file, or makes it; a new run refuses one that has lines, and every run a file that is no manifest. `run` is all that decides on the outputs besides their rows.
    CPDFStatus open(const std::string& path, START start, std::string_view run);

    // 16 hexadecimal digits made of the run, the row's values and its output: a row with another mark is another one.
    std::string mark_of(const CPDFFormData& data, const std::string& output) const;

    // Whether the row ended before with this mark: takes over what came of it.
    bool is_known(BATCH_RESULT& result) const;

    // Appends the line of a row. Any thread.
    CPDFStatus add(const BATCH_RESULT& result);

private:
    struct LINE {
        size_t row;
        uint64_t mark;
        ROW_RESULT result;
    };

    CPDFStatus drop_tail(size_t whole, size_t size, bool is_alone);
    void read(std::string_view text);
    void read_line(std::string_view text);

    std::string m_path;
    int m_fd = -1;                        // owned
    std::atomic<bool> m_is_torn = false;  // a part of a line stands at the end
    std::string m_run;
    std::vector<LINE> m_lines;  // by row, the last one of each
    std::unordered_map<size_t, std::vector<std::string>> m_refusals;
};
