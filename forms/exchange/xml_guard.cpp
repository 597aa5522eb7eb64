#include "forms/exchange/xml_guard.h"

#include <cstring>

#include "core/limits.h"

namespace {

// A walk over markup only: text is skipped, tags are counted, comments, CDATA and instructions are stepped over.
class Guard {
public:
    Guard(char* text, size_t len) : m_at(text), m_end(text + len) {}

    bool run()
    {
        while (to_next_markup()) {
            if (starts("<!--"))
                skip_past("-->");
            else if (starts("<![CDATA["))
                skip_past("]]>");
            else if (starts("<?"))
                skip_past("?>");
            else if (starts("<!"))
                blank_declaration();
            else if (!count_tag())
                return false;
        }
        return true;
    }

private:
    bool to_next_markup()
    {
        m_at = static_cast<char*>(std::memchr(m_at, '<', static_cast<size_t>(m_end - m_at)));
        return m_at != nullptr;
    }

    bool starts(const char* mark) const
    {
        const size_t size = std::strlen(mark);
        return static_cast<size_t>(m_end - m_at) >= size && std::memcmp(m_at, mark, size) == 0;
    }

    void skip_past(const char* mark)
    {
        while (m_at < m_end && !starts(mark))
            ++m_at;
    }

    // <!DOCTYPE name [ ... ]>: the subset may hold '>' inside brackets, quotes and nested declarations.
    void blank_declaration()
    {
        int brackets = 0;
        char quote = 0;
        for (; m_at < m_end; ++m_at) {
            const char c = *m_at;
            *m_at = ' ';
            if (quote) {
                quote = c == quote ? 0 : quote;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '[') {
                ++brackets;
            } else if (c == ']') {
                --brackets;
            } else if (c == '>' && brackets <= 0) {
                return;
            }
        }
    }

    bool count_tag()
    {
        const bool closes = m_end - m_at >= 2 && m_at[1] == '/';
        size_t attributes = 0;
        char quote = 0;
        char last = 0;
        for (++m_at; m_at < m_end; ++m_at) {
            const char c = *m_at;
            if (quote) {
                quote = c == quote ? 0 : quote;
                continue;
            }
            if (c == '>')
                break;
            if (c == '"' || c == '\'')
                quote = c;
            attributes += c == '=';
            last = c;
        }
        m_nodes += 2 + attributes;
        if (closes)
            m_depth -= m_depth > 0;
        else if (last != '/')
            ++m_depth;
        return attributes <= LIMIT_XML_ATTRIBUTES && m_nodes <= LIMIT_XML_NODES && m_depth <= LIMIT_XML_DEPTH;
    }

    char* m_at;   // borrowed from the caller
    char* m_end;  // borrowed from the caller
    size_t m_nodes = 0;
    int m_depth = 0;
};

}  // namespace

bool guard_xml(char* text, size_t len)
{
    return Guard(text, len).run();
}
