// What a batch says while it runs, and what it writes in the order of the rows, whichever job they come from.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

#include "tools/batch/batch_result.h"

class BatchManifest;
class ZipArchive;

class BatchOutput {
public:
    struct SETUP {
        std::string rows_file;  // named in complaints
        size_t first = 1;       // row
        size_t rows = 0;        // to be done
        FILE* reports = stdout;
        const char* good = "written";       // what rows are that are not refused
        BatchManifest* manifest = nullptr;  // borrowed, as the following
        ZipArchive* archive = nullptr;
    };

    explicit BatchOutput(SETUP setup);

    // Says that a row is done and how it went, and puts it into the archive and the manifest. Waits where the rows before it
    // are far behind. Any thread.
    void done(BATCH_RESULT result);

    // Whether going on makes no sense.
    bool has_failed() const;

    // To be called by a job that ends with the row that it has undone: nobody waits for it.
    void give_up();

    // To be called when no job runs: removes the progress bar and says what was done.
    void finish();

    size_t count(ROW_RESULT result) const { return m_counts[static_cast<size_t>(result)]; }

private:
    using CLOCK = std::chrono::steady_clock;

    void say(BATCH_RESULT& result);
    void store(BATCH_RESULT& result);
    void draw_bar();
    void clear_bar();

    const SETUP m_setup;
    mutable std::mutex m_mutex;
    std::condition_variable m_said;
    size_t m_next;                             // the first row that nothing was said about
    std::map<size_t, BATCH_RESULT> m_waiting;  // rows done before it
    size_t m_counts[static_cast<size_t>(ROW_RESULT::COUNT)] = {};
    bool m_has_failed = false;
    bool m_has_given_up = false;
    bool m_has_bar;  // standard error is a terminal
    bool m_is_bar_there = false;
    CLOCK::time_point m_start = CLOCK::now();
    CLOCK::time_point m_drawn = m_start;
};
