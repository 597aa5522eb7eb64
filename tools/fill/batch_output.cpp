#include "tools/fill/batch_output.h"

#include <unistd.h>

#include <cinttypes>
#include <cmath>

#include "tools/batch/manifest.h"
#include "tools/batch/zip_archive.h"
#include "tools/verb.h"

namespace {

// Rows that wait for one before them. Those of an archive are kept with their bytes.
constexpr size_t MOST_WAITING = 1024;

double seconds_since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

std::string joined(const std::vector<std::string>& sentences)
{
    std::string out;
    for (const std::string& sentence : sentences)
        out.append(out.empty() ? "" : "; ").append(sentence);
    return out;
}

std::string clock_text(double seconds)
{
    const auto whole = static_cast<uint64_t>(std::llround(seconds));
    char text[32];
    std::snprintf(text, sizeof text, "%" PRIu64 ":%02u:%02u", whole / 3600, static_cast<unsigned>(whole / 60 % 60),
                  static_cast<unsigned>(whole % 60));
    return text;
}

}  // namespace

BatchOutput::BatchOutput(SETUP setup)
    : m_setup(std::move(setup)), m_next(m_setup.first), m_has_bar(isatty(STDERR_FILENO))
{
}

void BatchOutput::done(BATCH_RESULT result)
{
    const size_t row = result.row;
    if (!m_setup.archive)
        store(result);
    std::unique_lock<std::mutex> lock(m_mutex);
    m_waiting.emplace(row, std::move(result));
    for (auto at = m_waiting.begin(); at != m_waiting.end() && at->first == m_next; at = m_waiting.erase(at)) {
        say(at->second);
        ++m_next;
    }
    m_said.notify_all();
    draw_bar();
    m_said.wait(lock, [&] { return row < m_next + MOST_WAITING || m_has_given_up; });
}

// Without an archive rows are stored as they end.
void BatchOutput::store(BATCH_RESULT& result)
{
    CPDFStatus status;
    if (m_setup.archive && result.result == ROW_RESULT::WRITTEN)
        status = m_setup.archive->add(result.output, result.head, result.tail);
    if (status.ok() && m_setup.manifest && !result.is_known)
        status = m_setup.manifest->add(result);
    if (status.ok())
        return;
    result.refuse(ROW_RESULT::FAILED, std::move(status.text));
    result.stops = true;
}

bool BatchOutput::has_failed() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_has_failed;
}

void BatchOutput::give_up()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_has_failed = true;
    m_has_given_up = true;
    m_said.notify_all();
}

void BatchOutput::finish()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& [row, result] : m_waiting)  // behind a row that a job could not end
        say(result);
    m_waiting.clear();
    clear_bar();
    constexpr const char* NAMES[] = {nullptr, "refused", "failed", "skipped"};
    size_t rows = 0;
    std::string counts;
    for (size_t i = 0; i < std::size(NAMES); ++i) {
        rows += m_counts[i];
        if (m_counts[i] || i == 0)
            counts.append(", ").append(std::to_string(m_counts[i])).append(" ").append(i ? NAMES[i] : m_setup.good);
    }
    std::string line = std::to_string(rows) + (rows == 1 ? " row: " : " rows: ") + counts.substr(2);
    constexpr double SHORT = 1;  // less says nothing about the speed
    const double seconds = seconds_since(m_start);
    if (seconds >= SHORT)
        line += "; " + std::to_string(static_cast<uint64_t>(static_cast<double>(rows) / seconds)) + " rows a second";
    complain(m_setup.rows_file, line);
}

void BatchOutput::say(BATCH_RESULT& result)
{
    if (m_setup.archive && !m_has_failed)
        store(result);
    m_has_failed = m_has_failed || result.stops;
    ++m_counts[static_cast<size_t>(result.result)];
    const bool is_good = result.result == ROW_RESULT::WRITTEN || result.result == ROW_RESULT::SKIPPED;
    if (result.report.empty() && is_good)
        return;
    clear_bar();
    need_memory();
    std::fwrite(result.report.data(), 1, result.report.size(), m_setup.reports);
    if (!is_good)
        complain(m_setup.rows_file, "row " + std::to_string(result.row) + ": " + joined(result.refusals));
}

void BatchOutput::draw_bar()
{
    constexpr size_t WIDTH = 40;
    constexpr double PAUSE = 0.1;
    if (!m_has_bar || seconds_since(m_drawn) < PAUSE)
        return;
    m_drawn = CLOCK::now();
    m_is_bar_there = true;
    const size_t done = m_next - m_setup.first;
    const size_t filled = m_setup.rows ? done * WIDTH / m_setup.rows : WIDTH;
    std::string line = "\r[" + std::string(filled, '#') + std::string(WIDTH - filled, '.') + "] " +
                       std::to_string(done) + " of " + std::to_string(m_setup.rows) + " rows";
    if (done)
        line +=
            ", " +
            clock_text(seconds_since(m_start) / static_cast<double>(done) * static_cast<double>(m_setup.rows - done)) +
            " left";
    line += "\x1b[K";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void BatchOutput::clear_bar()
{
    if (m_is_bar_there)
        std::fputs("\r\x1b[K", stderr);
    m_is_bar_there = false;
}
