#include "tools/batch/manifest.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

#include "file/file_bytes.h"
#include "formats/export/json_text.h"
#include "tools/batch/sha256.h"

namespace {

constexpr const char* NAMES[] = {"written", "refused", "failed", "skipped"};
static_assert(std::size(NAMES) == static_cast<size_t>(ROW_RESULT::COUNT));

constexpr size_t MARK_DIGITS = 16;
constexpr std::string_view LINE_BEGIN = "{\"row\":";

uint64_t number_of(std::string_view mark)
{
    uint64_t number = 0;
    std::from_chars(mark.data(), mark.data() + mark.size(), number, 16);
    return number;
}

std::string_view text_at(const nlohmann::json& line, const char* key)
{
    const auto at = line.find(key);
    return at != line.end() && at->is_string() ? std::string_view(at->get_ref<const std::string&>()) : "";
}

void append(std::string& out, const char* key, const std::string& text)
{
    if (text.empty())
        return;
    out.append(",\"").append(key).append("\":");
    append_json_text(out, text);
}

}  // namespace

BatchManifest::~BatchManifest()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

CPDFStatus BatchManifest::open(const std::string& path, START start, std::string_view run)
{
    m_path = path;
    m_run = run;
    m_fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (m_fd < 0)
        return CPDFStatus::failed(PDF_CODE::IO, std::string("it can't be written: ") + std::strerror(errno));
    // While others write there, nobody takes away what they may not have ended.
    const bool is_alone = ::flock(m_fd, LOCK_EX | LOCK_NB) == 0;
    CPDFFileBytes file;
    CPDFStatus status = file.open(path);
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    read(text);
    if (status.ok() && m_lines.empty() && !LINE_BEGIN.starts_with(text.substr(0, LINE_BEGIN.size())))
        return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, "it is no manifest, and is not written to");
    if (status.ok() && start == START::NEW && !text.empty())
        return CPDFStatus::failed(PDF_CODE::BAD_REQUEST,
                                  "it is that of another run: give --resume to go on with it, or another name");
    if (start == START::AGAIN)
        m_lines.clear();
    if (status.ok())
        status = drop_tail(start == START::AGAIN ? 0 : text.rfind('\n') + 1, text.size(), is_alone);
    ::flock(m_fd, LOCK_SH | LOCK_NB);
    return status;
}

// Behind the last line stands what a killed run could not end.
CPDFStatus BatchManifest::drop_tail(size_t whole, size_t size, bool is_alone)
{
    m_is_torn = whole < size && !is_alone;
    if (whole == size || !is_alone || ::ftruncate(m_fd, static_cast<off_t>(whole)) == 0)
        return {};
    return CPDFStatus::failed(PDF_CODE::IO, std::string("its torn last line stays: ") + std::strerror(errno));
}

void BatchManifest::read(std::string_view text)
{
    for (size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string_view::npos; at = end + 1)
        read_line(text.substr(at, end - at));
    const auto before = [](const LINE& a, const LINE& b) { return a.row < b.row; };
    std::stable_sort(m_lines.begin(), m_lines.end(), before);
}

void BatchManifest::read_line(std::string_view text)
{
    const nlohmann::json line = nlohmann::json::parse(text, nullptr, false);
    const auto row = line.is_object() ? line.find("row") : line.end();
    const auto* const name = std::find(std::begin(NAMES), std::end(NAMES), text_at(line, "result"));
    if (row == line.end() || !row->is_number_unsigned() || name == std::end(NAMES))
        return;
    const auto number = row->get<size_t>();
    m_lines.push_back({number, number_of(text_at(line, "mark")), static_cast<ROW_RESULT>(name - std::begin(NAMES))});
    std::vector<std::string> refusals;
    for (const auto& refusal : line.contains("refusals") ? line["refusals"] : nlohmann::json::array()) {
        if (refusal.is_string())
            refusals.push_back(refusal.get<std::string>());
    }
    if (!refusals.empty())
        m_refusals[number] = std::move(refusals);
}

std::string BatchManifest::mark_of(const CPDFFormData& data, const std::string& output) const
{
    // Lengths stand before the texts, so that no two rows are spelled alike.
    Sha256 sum;
    const auto add = [&sum](std::string_view text) {
        const uint64_t size = text.size();
        sum.add({reinterpret_cast<const char*>(&size), sizeof size}).add(text);
    };
    add(m_run);
    add(output);
    for (const PDF_FORM_ENTRY& entry : data) {
        add(entry.name);
        const std::vector<std::string> texts = texts_of(entry.value);
        for (const size_t number :
             {entry.value.index(), static_cast<size_t>(entry.words), size_t{entry.is_typed}, texts.size()})
            add(std::to_string(number));
        std::for_each(texts.begin(), texts.end(), add);
    }
    return sum.hex().substr(0, MARK_DIGITS);
}

bool BatchManifest::is_known(BATCH_RESULT& result) const
{
    const auto after = std::upper_bound(m_lines.begin(), m_lines.end(), result.row,
                                        [](size_t row, const LINE& line) { return row < line.row; });
    if (after == m_lines.begin() || std::prev(after)->row != result.row ||
        std::prev(after)->mark != number_of(result.mark))
        return false;
    result.result = std::prev(after)->result;
    if (const auto refusals = m_refusals.find(result.row); refusals != m_refusals.end())
        result.refusals = refusals->second;
    return true;
}

CPDFStatus BatchManifest::add(const BATCH_RESULT& result)
{
    std::string line(m_is_torn.exchange(false) ? "\n" : "");
    line.append(LINE_BEGIN).append(std::to_string(result.row));
    append(line, "output", result.output);
    append(line, "sha256", result.sha256);
    append(line, "result", NAMES[static_cast<size_t>(result.result)]);
    line += ",\"refusals\":[";
    for (const std::string& refusal : result.refusals) {
        line += &refusal == result.refusals.data() ? "" : ",";
        append_json_text(line, refusal);
    }
    line += "]";
    append(line, "mark", result.mark);
    line += "}\n";
    ssize_t done = 0;
    do
        done = ::write(m_fd, line.data(), line.size());
    while (done < 0 && errno == EINTR);
    if (done == static_cast<ssize_t>(line.size()))
        return {};
    m_is_torn = true;
    return CPDFStatus::failed(PDF_CODE::IO, "the manifest " + m_path +
                                                " can't be written: " + std::strerror(done < 0 ? errno : ENOSPC));
}
