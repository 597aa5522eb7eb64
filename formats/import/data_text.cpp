#include "formats/import/data_text.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "core/text.h"

namespace {

constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
constexpr std::string_view LITTLE_MARK = "\xFF\xFE";
constexpr std::string_view BIG_MARK = "\xFE\xFF";

CPDFStatus input_failure()
{
    return CPDFStatus::failed(PDF_CODE::IO, std::string("standard input can't be read: ") + std::strerror(errno));
}

// A descriptor of standard input, or of a file without a name that has all that came through it; -1 after a failure.
int kept_input()
{
    struct stat info = {};
    if (::fstat(STDIN_FILENO, &info) != 0 || S_ISREG(info.st_mode))
        return ::dup(STDIN_FILENO);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
    std::array<char, size_t{1} << 16> buffer;
    ssize_t got = file ? 1 : -1;
    while (got > 0) {
        got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            got = 1;
        else if (got > 0 && std::fwrite(buffer.data(), 1, static_cast<size_t>(got), file.get()) == 0)
            got = -1;
    }
    return got == 0 && std::fflush(file.get()) == 0 ? ::dup(::fileno(file.get())) : -1;
}

uint32_t unit_at(std::string_view bytes, size_t at, bool is_little)
{
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return is_little ? first | second << 8U : first << 8U | second;
}

}  // namespace

CPDFStatus CPDFDataText::open(const std::string& path)
{
    CPDFStatus status = path == "-" ? open_input() : m_file.open(path);
    return status.ok() ? take({reinterpret_cast<const char*>(m_file.data()), m_file.size()}) : status;
}

CPDFStatus CPDFDataText::take(std::string_view bytes)
{
    m_text = bytes;
    if (m_text.starts_with(UTF8_MARK))
        m_text.remove_prefix(UTF8_MARK.size());
    const bool is_utf16 = m_text.starts_with(LITTLE_MARK) || m_text.starts_with(BIG_MARK);
    return is_utf16 ? convert(m_text) : CPDFStatus();
}

CPDFStatus CPDFDataText::open_input()
{
    const int file = kept_input();
    return file < 0 ? input_failure() : m_file.open(file);
}

CPDFStatus CPDFDataText::convert(std::string_view bytes)
{
    constexpr uint32_t SURROGATES = 0xD800;
    constexpr uint32_t LOW_SURROGATES = 0xDC00;
    const bool is_little = bytes.starts_with(LITTLE_MARK);
    const auto is_in = [](uint32_t unit, uint32_t first) { return unit >> 10U == first >> 10U; };
    m_converted.clear();
    m_converted.reserve(bytes.size() / 2);
    for (size_t at = 2; at < bytes.size(); at += 2) {
        uint32_t unit = at + 1 < bytes.size() ? unit_at(bytes, at, is_little) : LOW_SURROGATES;
        const uint32_t next = at + 3 < bytes.size() ? unit_at(bytes, at + 2, is_little) : 0;
        if (is_in(unit, LOW_SURROGATES) || (is_in(unit, SURROGATES) && !is_in(next, LOW_SURROGATES)))
            return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                      "byte " + std::to_string(at) + ": the UTF-16 text breaks inside a character");
        if (is_in(unit, SURROGATES)) {
            unit = 0x10000 + ((unit - SURROGATES) << 10U) + (next - LOW_SURROGATES);
            at += 2;
        }
        char character[4];
        m_converted.append(character, static_cast<size_t>(utf8_from_ucs(unit, character)));
    }
    m_text = m_converted;
    return {};
}
