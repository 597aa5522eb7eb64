#include "forms/exchange/xml_guard.h"

#include <cstring>

#include "core/limits.h"

namespace {

// A walk over markup only, which takes the same things for markup as TinyXML does: to it whatever begins with '<' and is
// no element, comment or CDATA section ends at the next '>'.
class Guard {
public:
    Guard(char* text, size_t len) : m_at(text), m_end(text + len) {}

    bool run()
    {
        while (to_next_markup()) {
            if (accept("<!--"))
                skip_past("-->");
            else if (accept("<![CDATA["))
                skip_past("]]>");
            else if (starts("<!"))
                blank_declaration();
            else if (starts("</"))
                close_element();
            else if (!begins_name(1))
                skip_past(">");
            else if (!open_element())
                return false;
            if (++m_nodes > LIMIT_XML_NODES)
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

    bool accept(const char* mark)
    {
        if (!starts(mark))
            return false;
        m_at += std::strlen(mark);
        return true;
    }

    bool begins_name(int ahead) const
    {
        const auto c = static_cast<unsigned char>(m_end - m_at > ahead ? m_at[ahead] : 0);
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x7F;
    }

    void skip_past(const char* mark)
    {
        while (m_at < m_end && !accept(mark))
            ++m_at;
    }

    void close_element()
    {
        skip_past(">");
        m_depth -= m_depth > 0;
    }

    // <!DOCTYPE name [ ... ]>: the subset may hold '>' inside brackets, quotes, comments and nested declarations.
    void blank_declaration()
    {
        int brackets = 0;
        char quote = 0;
        for (; m_at < m_end; ++m_at) {
            if (!quote && (starts("<!--") || starts("<?"))) {
                char* begin = m_at;
                skip_past(starts("<?") ? "?>" : "-->");
                std::memset(begin, ' ', static_cast<size_t>(m_at - begin));
                --m_at;
                continue;
            }
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

    bool open_element()
    {
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
        m_nodes += 1 + attributes;  // one more for the text behind it
        m_depth += last != '/';
        return attributes <= LIMIT_XML_ATTRIBUTES && m_depth <= LIMIT_XML_DEPTH;
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
