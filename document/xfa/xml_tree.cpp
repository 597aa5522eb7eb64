#include "document/xfa/xml_tree.h"

#include <utility>

#include "core/limits.h"
#include "core/text.h"
#include "core/xml_token.h"

namespace {

std::string_view without_prefix(std::string_view name)
{
    return name.substr(name.rfind(':') + 1);
}

// The name in the tag at `begin`.
std::string_view name_in_tag(std::string_view text, size_t begin)
{
    text.remove_prefix(begin + 1);
    return text.substr(0, text.find_first_of(" \t\r\n/>"));
}

// Appends character data in which references are followed. What is none, or an entity of its own, stays as it stands.
void append_decoded(std::string& out, std::string_view text)
{
    constexpr size_t LONGEST = 12;
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t stop = text[i] == '&' ? text.substr(i, LONGEST).find(';') : std::string_view::npos;
        const uint32_t code = stop == std::string_view::npos ? 0 : xml_reference(text.substr(i + 1, stop - 1));
        if (code != 0) {
            char bytes[4];
            out.append(bytes, static_cast<size_t>(utf8_from_ucs(code, bytes)));
            i += stop;
        } else {
            out += text[i];
        }
    }
}

void make_line_feeds(std::string& text)
{
    size_t to = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool is_return = text[i] == '\r';
        i += is_return && i + 1 < text.size() && text[i + 1] == '\n';
        text[to++] = is_return ? '\n' : text[i];
    }
    text.resize(to);
}

// Builds the elements of a text.
class Reader {
public:
    Reader(std::string_view text, std::vector<XML_ELEMENT>& out) : m_lexer(text), m_text(text), m_out(out) {}

    // Why the text is not taken; null when it is.
    const char* run()
    {
        CPDFXmlLexer::PIECE piece = m_lexer.next();
        for (; piece != CPDFXmlLexer::END; piece = m_lexer.next()) {
            if (m_lexer.is_broken())
                return NOT_WELL_FORMED;
            if (const char* fault = take(piece))
                return fault;
        }
        return m_at < 0 && !m_out.empty() ? nullptr : NOT_WELL_FORMED;
    }

private:
    static constexpr const char* NOT_WELL_FORMED = "are no well-formed XML";

    const char* take(CPDFXmlLexer::PIECE piece)
    {
        switch (piece) {
        case CPDFXmlLexer::OPEN:
            return open();
        case CPDFXmlLexer::CLOSE:
            return close();
        case CPDFXmlLexer::DECLARATION:
            return "have a document type";  // its entities could be anything
        case CPDFXmlLexer::TEXT:
        case CPDFXmlLexer::CDATA:
            return m_at >= 0 || is_space() ? nullptr : NOT_WELL_FORMED;
        default:
            return nullptr;
        }
    }

    bool is_space() const
    {
        return m_text.substr(m_lexer.begin(), m_lexer.at() - m_lexer.begin()).find_first_not_of(" \t\r\n") ==
               std::string_view::npos;
    }

    XML_ELEMENT& element(int32_t number) { return m_out[static_cast<size_t>(number)]; }

    const char* open()
    {
        const auto begin = static_cast<uint32_t>(m_lexer.begin());
        if (!is_xml_name_like(m_lexer.name()) || (m_at < 0 && !m_out.empty()))
            return NOT_WELL_FORMED;
        for (size_t count = 0; m_lexer.next_attribute(); ++count) {
            if (count == LIMIT_XML_ATTRIBUTES)
                return "have an element with too many attributes";
        }
        if (!m_lexer.end_tag())
            return NOT_WELL_FORMED;
        if (m_out.size() >= LIMIT_XML_NODES || m_last.size() >= LIMIT_XML_DEPTH)
            return "have more elements, or more inside one another, than what is supported";
        const auto number = static_cast<int32_t>(m_out.size());
        const auto at = static_cast<uint32_t>(m_lexer.at());
        m_out.push_back({m_at, -1, -1, begin, at, at, at});
        if (m_at >= 0 && m_last.back() >= 0)
            element(m_last.back()).next = number;
        else if (m_at >= 0)
            element(m_at).first = number;
        if (m_at >= 0)
            m_last.back() = number;
        if (!m_lexer.is_empty()) {
            m_at = number;
            m_last.push_back(-1);
        }
        return nullptr;
    }

    const char* close()
    {
        if (m_at < 0)
            return NOT_WELL_FORMED;
        XML_ELEMENT& closed = element(m_at);
        if (name_in_tag(m_text, closed.begin) != m_lexer.name() || !m_lexer.end_tag())
            return NOT_WELL_FORMED;
        closed.inner_end = static_cast<uint32_t>(m_lexer.begin());
        closed.end = static_cast<uint32_t>(m_lexer.at());
        m_at = closed.parent;
        m_last.pop_back();
        return nullptr;
    }

    CPDFXmlLexer m_lexer;
    std::string_view m_text;
    std::vector<XML_ELEMENT>& m_out;  // borrowed from the caller
    int32_t m_at = -1;                // the innermost element that is open
    std::vector<int32_t> m_last;      // the last child so far of every open element
};

}  // namespace

CPDFStatus CPDFXmlTree::parse(std::string text)
{
    m_text = std::move(text);
    m_elements.clear();
    const char* fault = nullptr;
    if (m_text.size() > static_cast<size_t>(LIMIT_XFA_STREAM))
        fault = "are larger than what is supported";
    else if (!is_same_word(xml_encoding(m_text), "utf-8") || find_xml_forbidden(m_text) != std::string::npos)
        fault = "are not UTF-8, or have characters that XML forbids";
    else
        fault = Reader(m_text, m_elements).run();
    if (!fault)
        return {};
    m_elements.clear();
    return CPDFStatus::failed(PDF_CODE::BAD_DATA, fault);
}

std::string_view CPDFXmlTree::full_name(int32_t element) const
{
    return name_in_tag(m_text, at(element).begin);
}

std::string_view CPDFXmlTree::name(int32_t element) const
{
    return without_prefix(full_name(element));
}

std::string CPDFXmlTree::attribute(int32_t element, std::string_view name) const
{
    const XML_ELEMENT& at = this->at(element);
    CPDFXmlLexer lexer(std::string_view(m_text).substr(at.begin, at.inner - at.begin));
    std::string value;
    lexer.next();
    while (lexer.next_attribute()) {
        if (without_prefix(lexer.attribute()) != name)
            continue;
        append_decoded(value, lexer.value());
        break;
    }
    return value;
}

std::string CPDFXmlTree::text(int32_t element) const
{
    constexpr size_t CDATA_BEGIN = 9;
    constexpr size_t CDATA_END = 3;
    const std::string_view inner =
        std::string_view(m_text).substr(at(element).inner, at(element).inner_end - at(element).inner);
    CPDFXmlLexer lexer(inner);
    std::string out;
    CPDFXmlLexer::PIECE piece = lexer.next();
    for (; piece != CPDFXmlLexer::END; piece = lexer.next()) {
        const std::string_view taken = inner.substr(lexer.begin(), lexer.at() - lexer.begin());
        if (piece == CPDFXmlLexer::TEXT)
            append_decoded(out, taken);
        else if (piece == CPDFXmlLexer::CDATA)
            out += taken.substr(CDATA_BEGIN, taken.size() - CDATA_BEGIN - CDATA_END);
        while (lexer.next_attribute()) {
        }
        if (piece == CPDFXmlLexer::OPEN || piece == CPDFXmlLexer::CLOSE)
            lexer.end_tag();
    }
    make_line_feeds(out);
    return out;
}

int32_t CPDFXmlTree::child(int32_t element, std::string_view name) const
{
    int32_t at = this->at(element).first;
    while (at >= 0 && this->name(at) != name)
        at = this->at(at).next;
    return at;
}

std::string xml_escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '\r')
            out += "&#xD;";
        else
            out += c;
    }
    return out;
}
