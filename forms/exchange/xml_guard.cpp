#include "forms/exchange/xml_guard.h"

#include <cstring>

#include "core/limits.h"
#include "core/text.h"
#include "core/xml_token.h"

namespace {

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
    Guard(char* text, size_t len) : m_text(text), m_lexer({text, len}) {}

    bool run()
    {
        CPDFXmlLexer::PIECE piece = m_lexer.next();
        for (; piece != CPDFXmlLexer::END; piece = m_lexer.next()) {
            if (!take(piece))
                return false;
        }
        return true;
    }

private:
    bool take(CPDFXmlLexer::PIECE piece)
    {
        switch (piece) {
        case CPDFXmlLexer::OPEN:
        case CPDFXmlLexer::CLOSE:
            return tag(piece == CPDFXmlLexer::CLOSE);
        case CPDFXmlLexer::DECLARATION:
            blank();
            return true;
        case CPDFXmlLexer::COMMENT:
        case CPDFXmlLexer::INSTRUCTION:
            blank();
            [[fallthrough]];
        default:
            return !m_lexer.is_broken();
        }
    }

    // In place of the XML declaration a byte order mark says what that said, as far as the parser cares.
    void blank()
    {
        const size_t begin = m_lexer.begin();
        const bool is_head = begin == 0 && m_lexer.at() > 5 && std::memcmp(m_text, "<?xml", 5) == 0;
        std::memset(m_text + begin, ' ', m_lexer.at() - begin);
        if (is_head)
            std::memcpy(m_text, "\xEF\xBB\xBF", 3);
    }

    bool tag(bool closes)
    {
        size_t attributes = 0;
        for (; m_lexer.next_attribute(); ++attributes) {
            if (!is_xml_name_like(m_lexer.attribute()))
                return false;
        }
        if (!is_xml_name_like(m_lexer.name()) || !m_lexer.end_tag())
            return false;
        m_nodes += 2 + attributes;
        if (closes)
            m_depth -= m_depth > 0;
        else if (!m_lexer.is_empty())
            ++m_depth;
        return attributes <= LIMIT_XML_ATTRIBUTES && m_nodes <= LIMIT_XML_NODES && m_depth <= LIMIT_XML_DEPTH;
    }

    char* m_text;  // borrowed from the caller
    CPDFXmlLexer m_lexer;
    size_t m_nodes = 0;
    int m_depth = 0;
};

}  // namespace

bool guard_xml(char* text, size_t len)
{
    replace_malformed(text, len);
    return Guard(text, len).run();
}
