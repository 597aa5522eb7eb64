#include "tools/fill/batch_output.h"

#include <cstdio>
#include <unistd.h>

#include "tools/verb.h"

BatchOutput::BatchOutput(std::string rows_file, size_t rows)
    : m_rows_file(std::move(rows_file)), m_rows(rows), m_has_bar(isatty(STDERR_FILENO))
{
}

void BatchOutput::done(size_t row, CPDFStatus status, std::string report)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.emplace(row, RESULT{std::move(status), std::move(report)});
    for (auto at = m_waiting.begin(); at != m_waiting.end() && at->first == m_next; at = m_waiting.erase(at)) {
        say(at->first, at->second);
        ++m_next;
    }
    draw_bar();
}

size_t BatchOutput::finish()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [row, result] : m_waiting)  // behind a row that a job could not end
        say(row, result);
    m_waiting.clear();
    clear_bar();
    return m_refused;
}

void BatchOutput::say(size_t row, const RESULT& result)
{
    if (result.report.empty() && result.status.ok())
        return;
    clear_bar();
    put(result.report);
    if (result.status.ok())
        return;
    ++m_refused;
    complain(m_rows_file, "row " + std::to_string(row) + ": " + result.status.text);
}

void BatchOutput::draw_bar()
{
    constexpr size_t WIDTH = 40;
    const size_t rows_done = m_next - 1;
    const size_t per_mille = m_rows ? rows_done * 1000 / m_rows : 1000;
    if (!m_has_bar || m_drawn == per_mille + 1)
        return;
    m_drawn = per_mille + 1;
    const size_t filled = per_mille * WIDTH / 1000;
    const std::string line = "\r[" + std::string(filled, '#') + std::string(WIDTH - filled, '.') + "] " +
                             std::to_string(rows_done) + " of " + std::to_string(m_rows) + " rows\x1b[K";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void BatchOutput::clear_bar()
{
    if (m_drawn)
        std::fputs("\r\x1b[K", stderr);
    m_drawn = 0;
}
