#include "forms/exchange/xml_guard.h"

#include <cstdint>
#include <cstring>

#include "core/limits.h"
#include "core/text.h"

namespace {

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_name_start(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

// The parser takes a lead byte for as many bytes as it announces, markup and terminator included.
void replace_malformed(char* text, size_t len)
{
    auto* p = reinterpret_cast<const unsigned char*>(text);
    const unsigned char* end = p + len;
    while (p < end) {
        const unsigned char* start = p;
        if (ucs_from_utf8(p, end) == 0xFFFD && p - start == 1)
            text[start - reinterpret_cast<const unsigned char*>(text)] = '?';
    }
}

// A strict walk over the markup. Wherever the parser might take it for something else, the text is refused; comments,
// instructions and declarations, whose ends it sees elsewhere, are blanked.
class Guard {
public:
    Guard(char* text, size_t len) : m_at(text), m_end(text + len) {}

    bool run()
    {
        keep_encoding();
        while (to_next_markup()) {
            bool fine = true;
            if (starts("<!--"))
                fine = blank_past(4, "-->");
            else if (starts("<![CDATA["))
                fine = skip_past(9, "]]>");
            else if (starts("<?"))
                fine = blank_past(2, "?>");
            else if (starts("<!"))
                blank_declaration();
            else
                fine = tag();
            if (!fine)
                return false;
        }
        return true;
    }

private:
    // The declaration goes; a byte order mark in its place says what it said, as far as the parser cares.
    void keep_encoding()
    {
        if (starts("<?xml") && blank_past(2, "?>"))
            std::memcpy(m_begin, "\xEF\xBB\xBF", 3);
        m_at = m_begin;
    }

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

    bool skip_past(size_t from, const char* mark)
    {
        for (m_at += from; m_at < m_end; ++m_at) {
            if (starts(mark)) {
                m_at += std::strlen(mark);
                return true;
            }
        }
        return false;
    }

    bool blank_past(size_t from, const char* mark)
    {
        char* start = m_at;
        const bool found = skip_past(from, mark);
        std::memset(start, ' ', static_cast<size_t>(m_at - start));
        return found;
    }

    // <!DOCTYPE name [ ... ]>: the subset may hold '>' inside brackets, quotes, comments and nested declarations.
    void blank_declaration()
    {
        int brackets = 0;
        char quote = 0;
        while (m_at < m_end) {
            if (!quote && starts("<!--")) {
                blank_past(4, "-->");
                continue;
            }
            const char c = *m_at;
            *m_at++ = ' ';
            if (quote)
                quote = c == quote ? 0 : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '[')
                ++brackets;
            else if (c == ']')
                --brackets;
            else if (c == '>' && brackets <= 0)
                return;
        }
    }

    // tag := '<' name ( name '=' quoted )* '/'? '>' | '</' name '>'
    bool tag()
    {
        const bool closes = m_end - m_at >= 2 && m_at[1] == '/';
        m_at += closes ? 2 : 1;
        if (!name())
            return false;
        size_t attributes = 0;
        for (skip_space(); !closes && m_at < m_end && is_name_start(*m_at); skip_space()) {
            if (!attribute())
                return false;
            ++attributes;
        }
        const bool empty = !closes && m_at < m_end && *m_at == '/';
        m_at += empty;
        if (m_at == m_end || *m_at++ != '>')
            return false;
        m_nodes += 2 + attributes;
        if (closes)
            m_depth -= m_depth > 0;
        else if (!empty)
            ++m_depth;
        return attributes <= LIMIT_XML_ATTRIBUTES && m_nodes <= LIMIT_XML_NODES && m_depth <= LIMIT_XML_DEPTH;
    }

    bool attribute()
    {
        name();
        skip_space();
        if (m_at == m_end || *m_at++ != '=')
            return false;
        skip_space();
        if (m_at == m_end || (*m_at != '"' && *m_at != '\''))
            return false;
        const char quote = *m_at++;
        m_at = static_cast<char*>(std::memchr(m_at, quote, static_cast<size_t>(m_end - m_at)));
        if (!m_at) {
            m_at = m_end;
            return false;
        }
        ++m_at;
        return true;
    }

    bool name()
    {
        if (m_at == m_end || !is_name_start(*m_at))
            return false;
        while (m_at < m_end &&
               (is_name_start(*m_at) || (*m_at >= '0' && *m_at <= '9') || *m_at == '-' || *m_at == '.' || *m_at == ':'))
            ++m_at;
        return true;
    }

    void skip_space()
    {
        while (m_at < m_end && is_space(*m_at))
            ++m_at;
    }

    char* m_at;   // borrowed from the caller
    char* m_end;  // borrowed from the caller
    char* m_begin = m_at;
    size_t m_nodes = 0;
    int m_depth = 0;
};

}  // namespace

bool guard_xml(char* text, size_t len)
{
    replace_malformed(text, len);
    return Guard(text, len).run();
}
