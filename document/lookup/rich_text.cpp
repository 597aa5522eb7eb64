#include "document/lookup/rich_text.h"

#include "core/text.h"
#include "core/xml_token.h"

namespace {

constexpr size_t LONGEST_REFERENCE = 32;  // "&#x10FFFF;", with zeros before it

class PlainText {
public:
    void add(std::string_view text)
    {
        while (!text.empty()) {
            const size_t end =
                text.front() == '&' ? text.substr(0, LONGEST_REFERENCE).find(';') : std::string_view::npos;
            const uint32_t c = end == std::string_view::npos ? 0 : xml_reference(text.substr(1, end - 1));
            char bytes[4] = {text.front()};
            const int size = c ? utf8_from_ucs(c, bytes) : 1;
            add_character({bytes, static_cast<size_t>(size)});
            text.remove_prefix(c ? end + 1 : 1);
        }
    }

    void end_line() { m_lines += !m_out.empty(); }
    // A paragraph ends the line before it and its own, unless nothing stands there.
    void end_paragraph() { m_lines = m_out.empty() || m_lines > 0 ? m_lines : 1; }

    std::string take() { return std::move(m_out); }

private:
    void add_character(std::string_view c)
    {
        if (c == " " || c == "\n" || c == "\r" || c == "\t") {
            m_blank = true;
            return;
        }
        if (m_lines > 0)
            m_out.append(m_lines, '\n');
        else if (m_blank && !m_out.empty())
            m_out += ' ';
        m_lines = 0;
        m_blank = false;
        m_out += c;
    }

    std::string m_out;
    size_t m_lines = 0;    // line feeds due before the next character
    bool m_blank = false;  // the same for a blank
};

}  // namespace

std::string plain_text(std::string_view xhtml)
{
    PlainText out;
    CPDFXmlLexer lexer(xhtml);
    for (CPDFXmlLexer::PIECE piece = lexer.next(); piece != CPDFXmlLexer::END; piece = lexer.next()) {
        if (piece == CPDFXmlLexer::TEXT)
            out.add(xhtml.substr(lexer.begin(), lexer.at() - lexer.begin()));
        if (piece != CPDFXmlLexer::OPEN && piece != CPDFXmlLexer::CLOSE)
            continue;
        if (lexer.name() == "br" && piece == CPDFXmlLexer::OPEN)
            out.end_line();
        else if (lexer.name() == "p" || lexer.name() == "li" || lexer.name() == "div")
            out.end_paragraph();
        while (piece == CPDFXmlLexer::OPEN && lexer.next_attribute()) {
        }
        if (!lexer.end_tag() || lexer.is_broken())
            break;
    }
    return out.take();
}
