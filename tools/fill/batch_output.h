// What a batch says while it runs: refusals and reports in the order of the rows, whichever job they come from.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>

#include "file/status.h"

class BatchOutput {
public:
    // `rows_file` is named in complaints, `rows` are to be done.
    BatchOutput(std::string rows_file, size_t rows);

    // Says that a row is done, how it went, and its lines of the report. Any thread.
    void done(size_t row, CPDFStatus status, std::string report);

    // To be called when no job runs: removes the progress bar and returns how many rows were refused.
    size_t finish();

private:
    struct RESULT {
        CPDFStatus status;
        std::string report;
    };

    void say(size_t row, const RESULT& result);
    void draw_bar();
    void clear_bar();

    std::mutex m_mutex;
    std::string m_rows_file;
    size_t m_rows;
    size_t m_next = 1;                   // the first row that nothing was said about
    std::map<size_t, RESULT> m_waiting;  // rows done before it
    size_t m_refused = 0;
    bool m_has_bar;      // standard error is a terminal
    size_t m_drawn = 0;  // per mille shown, plus 1; 0 while no bar is there
};
