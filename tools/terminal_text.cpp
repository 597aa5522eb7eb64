#include "tools/terminal_text.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <sys/ioctl.h>
#include <unistd.h>

#include "core/text.h"

namespace {

constexpr const char* ELLIPSIS = "…";

// Walks the characters of UTF-8 text.
class CharReader {
public:
    explicit CharReader(std::string_view text)
        : m_at(reinterpret_cast<const unsigned char*>(text.data())), m_end(m_at + text.size())
    {
    }

    bool at_end() const { return m_at == m_end; }
    uint32_t next() { return ucs_from_utf8(m_at, m_end); }
    const char* position() const { return reinterpret_cast<const char*>(m_at); }

private:
    const unsigned char* m_at;  // borrowed from the text
    const unsigned char* m_end;
};

bool drives_terminal(uint32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || c == 0x200E || c == 0x200F ||
           (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

void append_escape(std::string& out, uint32_t c)
{
    constexpr char LETTERS[] = "abtnvfr";  // from U+0007
    char escape[8];
    if (c >= 0x07 && c <= 0x0D)
        std::snprintf(escape, sizeof escape, "\\%c", LETTERS[c - 0x07]);
    else
        std::snprintf(escape, sizeof escape, c < 0x80 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(c));
    out += escape;
}

// How many bytes at the start of the text are characters of ASCII that show: mostly all of them.
size_t plain_length(std::string_view text)
{
    const auto is_plain = [](char c) { return c >= ' ' && c < 0x7F; };
    return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), is_plain) - text.begin());
}

std::string escaped(std::string_view text, const char* kept)
{
    const size_t plain = plain_length(text);
    std::string out(text.substr(0, plain));
    for (CharReader reader(text.substr(plain)); !reader.at_end();) {
        const uint32_t c = reader.next();
        if (drives_terminal(c) && !(c > 0 && c < 0x80 && std::strchr(kept, static_cast<int>(c)))) {
            append_escape(out, c);
            continue;
        }
        char utf8[4];
        out.append(utf8, static_cast<size_t>(utf8_from_ucs(c, utf8)));
    }
    return out;
}

int columns_of_char(uint32_t c)
{
    static const bool knows_widths = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    if (c < 0x80 || !knows_widths)
        return 1;
    const int columns = wcwidth(static_cast<wchar_t>(c));
    return columns < 0 ? 1 : columns;
}

// A character has no more columns than bytes.
bool fits(std::string_view text, int columns)
{
    return text.size() <= static_cast<size_t>(std::max(columns, 0)) || columns_of(text) <= columns;
}

}  // namespace

std::string printable(std::string_view text)
{
    return escaped(text, "");
}

std::string printable_lines(std::string_view text)
{
    return escaped(text, "\n\t");
}

int columns_of(std::string_view text)
{
    const size_t plain = plain_length(text);
    int columns = static_cast<int>(plain);
    for (CharReader reader(text.substr(plain)); !reader.at_end();)
        columns += columns_of_char(reader.next());
    return columns;
}

std::string cut_end(std::string_view text, int columns)
{
    if (fits(text, columns))
        return std::string(text);
    CharReader reader(text);
    const char* end = text.data();
    for (int left = columns - 1; !reader.at_end(); end = reader.position()) {
        left -= columns_of_char(reader.next());
        if (left < 0)
            break;
    }
    return std::string(text.data(), end) + ELLIPSIS;
}

std::string cut_start(std::string_view text, int columns)
{
    int excess = columns_of(text) - columns;
    if (excess <= 0)
        return std::string(text);
    ++excess;  // for the ellipsis
    CharReader reader(text);
    const char* begin = text.data();
    // Combining characters go with the one before them.
    while (!reader.at_end()) {
        const int width = columns_of_char(reader.next());
        if (excess <= 0 && width > 0)
            break;
        excess -= width;
        begin = reader.position();
    }
    return ELLIPSIS + std::string(begin, text.data() + text.size());
}

std::string cut_middle(std::string_view text, int columns)
{
    if (fits(text, columns))
        return std::string(text);
    const int end = columns / 2;  // what is left after the ellipsis of both halves
    const std::string begin = cut_end(text, columns - end);
    return begin + cut_start(text, end + 1).substr(std::string_view(ELLIPSIS).size());
}

int terminal_columns()
{
    constexpr int USUAL = 80;
    if (!isatty(STDOUT_FILENO))
        return 0;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    int columns = 0;
    if (const char* told = std::getenv("COLUMNS"))
        std::from_chars(told, told + std::strlen(told), columns);
    return columns > 0 ? columns : USUAL;
}
