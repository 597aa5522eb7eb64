#include "core/xml_token.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "core/text.h"

namespace {

constexpr size_t NONE = std::string_view::npos;
constexpr std::string_view SPACES = " \t\r\n";
constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";

bool is_name_start(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool is_in_name(char c)
{
    return is_name_start(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

}  // namespace

size_t find_xml_forbidden(std::string_view text)
{
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = begin + text.size();
    for (const unsigned char* p = begin; p < end;) {
        const unsigned char* const start = p;
        const uint32_t c = *p < 0x80 ? *p++ : ucs_from_utf8(p, end);
        const bool is_malformed = c == 0xFFFD && p - start == 1;
        if (is_malformed || !is_xml_char(c))
            return static_cast<size_t>(start - begin);
    }
    return NONE;
}

bool is_xml_name_like(std::string_view name)
{
    return !name.empty() && is_name_start(name[0]) && std::all_of(name.begin(), name.end(), is_in_name);
}

std::string_view xml_encoding(std::string_view text)
{
    if (text.substr(0, UTF8_MARK.size()) == UTF8_MARK)
        text.remove_prefix(UTF8_MARK.size());
    const std::string_view declaration = text.substr(0, text.find("?>"));
    const size_t key = declaration.find("encoding");
    if (declaration.substr(0, 5) != "<?xml" || declaration.find_first_of(SPACES) != 5 || key == NONE)
        return "UTF-8";
    const size_t open = declaration.find_first_of("'\"", key);
    const size_t close = open == NONE ? NONE : declaration.find(declaration[open], open + 1);
    return close == NONE ? std::string_view() : declaration.substr(open + 1, close - open - 1);
}

uint32_t xml_reference(std::string_view word)
{
    constexpr std::pair<std::string_view, char> ENTITIES[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''},
    };
    for (const auto& [name, character] : ENTITIES) {
        if (word == name)
            return static_cast<uint32_t>(character);
    }
    if (word.substr(0, 1) != "#")
        return 0;
    const bool is_hex = word.substr(0, 2) == "#x";
    const std::string_view digits = word.substr(is_hex ? 2 : 1);
    const char* const end = digits.data() + digits.size();
    uint32_t code = 0;
    const auto [last, error] = std::from_chars(digits.data(), end, code, is_hex ? 16 : 10);
    return error == std::errc() && last == end && is_xml_char(code) ? code : 0;
}

bool is_same_word(std::string_view text, std::string_view small)
{
    return std::equal(text.begin(), text.end(), small.begin(), small.end(),
                      [](char a, char b) { return a == b || (a >= 'A' && a <= 'Z' && a - 'A' + 'a' == b); });
}

CPDFXmlLexer::CPDFXmlLexer(std::string_view text) : m_text(text)
{
    if (starts(UTF8_MARK))
        m_at = UTF8_MARK.size();
}

CPDFXmlLexer::PIECE CPDFXmlLexer::next()
{
    m_begin = m_at;
    m_is_broken = m_is_empty = false;
    if (m_at == m_text.size())
        return m_piece = END;
    if (m_text[m_at] != '<') {
        m_at = std::min(m_text.find('<', m_at), m_text.size());
        return m_piece = TEXT;
    }
    if (starts("<!--"))
        return pass(COMMENT, 4, "-->");
    if (starts("<![CDATA["))
        return pass(CDATA, 9, "]]>");
    if (starts("<?"))
        return pass(INSTRUCTION, 2, "?>");
    if (starts("<!")) {
        pass_declaration();
        return m_piece = DECLARATION;
    }
    m_piece = starts("</") ? CLOSE : OPEN;
    m_at += m_piece == CLOSE ? 2 : 1;
    m_name = take_name();
    return m_piece;
}

// Moves behind the next `end`.
CPDFXmlLexer::PIECE CPDFXmlLexer::pass(PIECE piece, size_t from, std::string_view end)
{
    const size_t found = m_text.find(end, m_at + from);
    m_is_broken = found == NONE;
    m_at = m_is_broken ? m_text.size() : found + end.size();
    return m_piece = piece;
}

// <!DOCTYPE name [ ... ]>: the subset may hold '>' inside brackets, quotes, comments and nested declarations.
void CPDFXmlLexer::pass_declaration()
{
    int brackets = 0;
    char quote = 0;
    while (m_at < m_text.size()) {
        if (!quote && starts("<!--")) {
            pass(COMMENT, 4, "-->");
            continue;
        }
        const char c = m_text[m_at++];
        if (quote)
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '[')
            ++brackets;
        else if (c == ']')
            --brackets;
        else if (c == '>' && brackets <= 0)
            return;
    }
    m_is_broken = true;
}

bool CPDFXmlLexer::next_attribute()
{
    skip_space();
    if (m_piece != OPEN || m_is_broken)
        return false;
    m_attribute = take_name();
    if (m_attribute.empty())
        return false;
    m_is_broken = true;
    skip_space();
    if (!starts("="))
        return false;
    ++m_at;
    skip_space();
    const size_t end = starts("\"") || starts("'") ? m_text.find(m_text[m_at], m_at + 1) : NONE;
    if (end == NONE)
        return false;
    m_value = m_text.substr(m_at + 1, end - m_at - 1);
    m_at = end + 1;
    m_is_broken = false;
    return true;
}

bool CPDFXmlLexer::end_tag()
{
    skip_space();
    m_is_empty = m_piece == OPEN && starts("/");
    m_at += m_is_empty;
    if (m_is_broken || !starts(">"))
        return false;
    ++m_at;
    return true;
}

std::string_view CPDFXmlLexer::take_name()
{
    const size_t begin = m_at;
    m_at = std::min(m_text.find_first_of(" \t\r\n=/><'\"", m_at), m_text.size());
    return m_text.substr(begin, m_at - begin);
}

void CPDFXmlLexer::skip_space()
{
    m_at = std::min(m_text.find_first_not_of(SPACES, m_at), m_text.size());
}
