#include "formats/import/xml_reader.h"

#include <algorithm>

#include "core/limits.h"
#include "core/text.h"

// document = [mark] *( comment / instruction / space ) element *( comment / instruction / space )
// element  = "<" name *attribute ( "/>" / ">" *( element / text / "<![CDATA[" any "]]>" / comment / instruction ) "</"
// name ">" ) attribute = name "=" ( '"' text '"' / "'" text "'" )

namespace {

constexpr size_t NONE = std::string_view::npos;

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// A name for a sentence.
std::string in_brackets(std::string_view name)
{
    return "<" + std::string(name.substr(0, 40)) + ">";
}

}  // namespace

CPDFXmlReader::CPDFXmlReader(std::string_view text) : m_all(text), m_lexer(text)
{
    const std::string_view head = text.substr(0, 2);
    const std::string_view encoding = xml_encoding(text);
    if (head == "\xFF\xFE" || head == "\xFE\xFF" || head == std::string_view("\0<", 2) ||
        head == std::string_view("<\0", 2))
        fail(0, "the text is UTF-16, not UTF-8");
    else if (!is_same_word(encoding, "utf-8") && !is_same_word(encoding, "utf8") && !is_ascii(text))
        fail(0, "the text is \"" + std::string(encoding.substr(0, 40)) + "\", not UTF-8");
    else if (const size_t wrong = find_xml_forbidden(text); wrong != NONE)
        fail(wrong, "there is a byte that is not UTF-8, or a character that XML forbids");
}

CPDFXmlReader::TOKEN CPDFXmlReader::fail(size_t at, const std::string& why)
{
    const std::string_view before = m_all.substr(0, at);
    auto line = std::count(before.begin(), before.end(), '\n');
    for (size_t i = before.find('\r'); i != NONE; i = before.find('\r', i + 1))
        line += i + 1 >= m_all.size() || m_all[i + 1] != '\n';
    if (m_status.ok())
        m_status = CPDFStatus::failed(PDF_CODE::BAD_DATA, "line " + std::to_string(line + 1) + ": " + why);
    return FAULT;
}

CPDFXmlReader::TOKEN CPDFXmlReader::next()
{
    if (!m_status.ok())
        return FAULT;
    if (m_is_empty) {
        m_is_empty = false;
        m_open.pop_back();
        return CLOSE;
    }
    for (;;) {
        const CPDFXmlLexer::PIECE piece = m_lexer.next();
        switch (piece) {
        case CPDFXmlLexer::COMMENT:
        case CPDFXmlLexer::INSTRUCTION:
            if (m_lexer.is_broken())
                return refuse(piece == CPDFXmlLexer::COMMENT ? "a comment has no end" : "an instruction has no end");
            break;
        case CPDFXmlLexer::CDATA:
            return take_cdata();
        case CPDFXmlLexer::DECLARATION:
            return refuse("document types are not supported");
        case CPDFXmlLexer::OPEN:
            return take_open();
        case CPDFXmlLexer::CLOSE:
            return take_close();
        case CPDFXmlLexer::TEXT:
            if (const TOKEN token = take_text(); token != END)
                return token;
            break;
        case CPDFXmlLexer::END:
            if (!m_open.empty())
                return refuse("the text ends inside " + in_brackets(m_open.back()));
            return m_has_root ? END : refuse("there is no element");
        }
    }
}

CPDFXmlReader::TOKEN CPDFXmlReader::skip_element()
{
    const size_t inside = depth();
    TOKEN token = next();
    while (token != FAULT && (token != CLOSE || depth() >= inside))
        token = next();
    return token;
}

const std::string* CPDFXmlReader::attribute(std::string_view name) const
{
    const auto found =
        std::find_if(m_attributes.begin(), m_attributes.end(), [&](const auto& entry) { return entry.first == name; });
    return found == m_attributes.end() ? nullptr : &found->second;
}

CPDFXmlReader::TOKEN CPDFXmlReader::take_open()
{
    m_name = m_lexer.name();
    if (!is_xml_name_like(m_name))
        return refuse("a '<' begins no tag");
    if (!take_attributes())
        return refuse("the attributes of " + in_brackets(m_name) + " can't be read");
    if (!m_lexer.end_tag())
        return refuse("the tag " + in_brackets(m_name) + " has no end");
    if (m_open.empty() && m_has_root)
        return refuse("there is a second root element " + in_brackets(m_name));
    if (m_open.size() >= LIMIT_XML_DEPTH)
        return refuse("elements nest deeper than " + std::to_string(LIMIT_XML_DEPTH) + " levels");
    m_is_empty = m_lexer.is_empty();
    m_has_root = true;
    m_open.push_back(m_name);
    return OPEN;
}

CPDFXmlReader::TOKEN CPDFXmlReader::take_close()
{
    m_name = m_lexer.name();
    if (m_open.empty())
        return refuse("an end tag closes nothing");
    if (m_open.back() != m_name)
        return refuse(in_brackets(m_open.back()) + " is not closed");
    if (!m_lexer.end_tag())
        return refuse("an end tag has no end");
    m_open.pop_back();
    return CLOSE;
}

// White space outside the root is nothing: END then.
CPDFXmlReader::TOKEN CPDFXmlReader::take_text()
{
    if (m_open.empty()) {
        const size_t seen = m_all.find_first_not_of(" \t\r\n", m_lexer.begin());
        return seen >= m_lexer.at() ? END : fail(seen, "there is text outside the root element");
    }
    m_text.clear();
    return decode(m_lexer.begin(), m_lexer.at(), "&\r") ? TEXT : FAULT;
}

CPDFXmlReader::TOKEN CPDFXmlReader::take_cdata()
{
    constexpr size_t BEGIN_SIZE = 9;
    constexpr size_t END_SIZE = 3;
    if (m_open.empty())
        return refuse("there is text outside the root element");
    if (m_lexer.is_broken())
        return refuse("a CDATA section has no end");
    m_text.clear();
    decode(m_lexer.begin() + BEGIN_SIZE, m_lexer.at() - END_SIZE, "\r");
    return TEXT;
}

bool CPDFXmlReader::take_attributes()
{
    m_attributes.clear();
    while (m_lexer.next_attribute()) {
        const std::string_view name = m_lexer.attribute();
        const std::string_view value = m_lexer.value();
        const auto begin = static_cast<size_t>(value.data() - m_all.data());
        m_text.clear();
        if (m_attributes.size() >= LIMIT_XML_ATTRIBUTES || !is_xml_name_like(name) || attribute(name) ||
            !decode(begin, begin + value.size(), "&\r\t\n<"))
            return false;
        m_attributes.emplace_back(name, m_text);
    }
    return !m_lexer.is_broken();
}

// Appends character data to m_text. Of the characters in `special`, references are followed, line ends become LF, in
// attributes a space as all white space there, and a '<' is refused.
bool CPDFXmlReader::decode(size_t begin, size_t end, std::string_view special)
{
    const bool is_attribute = special.back() == '<';
    for (size_t at = begin; at < end;) {
        const size_t plain = std::min(m_all.substr(0, end).find_first_of(special, at), end);
        m_text += m_all.substr(at, plain - at);
        at = plain;
        if (at == end)
            break;
        if (m_all[at] == '<')
            return false;
        if (m_all[at] == '&') {
            if (!decode_reference(at, end))
                return false;
            continue;
        }
        at += m_all.substr(at, 2) == "\r\n" ? 2 : 1;
        m_text += is_attribute ? ' ' : '\n';
    }
    return true;
}

// At the '&' of one of the five entities, or of a character by its number. False, with status() set, for others.
bool CPDFXmlReader::decode_reference(size_t& at, size_t end)
{
    constexpr size_t LONGEST = 12;
    const size_t stop = m_all.substr(at, std::min(end - at, LONGEST)).find(';');
    if (stop == NONE) {
        fail(at, "an '&' begins no entity; it is written \"&amp;\" for itself");
        return false;
    }
    const std::string_view word = m_all.substr(at + 1, stop - 1);
    const size_t start = at;
    at += stop + 1;
    const uint32_t code = xml_reference(word);
    if (code == 0) {
        fail(start, "there is no entity \"&" + std::string(word) + ";\"");
        return false;
    }
    char bytes[4];
    m_text.append(bytes, static_cast<size_t>(utf8_from_ucs(code, bytes)));
    return true;
}
