#include "formats/import/xml_reader.h"

#include <algorithm>
#include <charconv>

#include "core/limits.h"
#include "core/text.h"
#include "document/lookup/field_text.h"

// document = [mark] *( comment / instruction / space ) element *( comment / instruction / space )
// element  = "<" name *attribute ( "/>" / ">" *( element / text / "<![CDATA[" any "]]>" / comment / instruction ) "</"
// name ">" ) attribute = name "=" ( '"' text '"' / "'" text "'" )

namespace {

constexpr size_t NONE = std::string_view::npos;
constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";

bool is_white(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_name_start(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

bool is_in_name(char c)
{
    return is_name_start(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

bool is_xml_character(uint32_t c)
{
    if (c < 0x20)
        return c == '\t' || c == '\n' || c == '\r';
    return (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF && c <= 0x10FFFF;
}

// The position of the first byte that no XML text has; NONE when there is none.
size_t find_forbidden(std::string_view text)
{
    const auto found = std::find_if(text.begin(), text.end(),
                                    [](char c) { return static_cast<unsigned char>(c) < 0x20 && !is_white(c); });
    return std::min(found == text.end() ? NONE : static_cast<size_t>(found - text.begin()), find_malformed(text));
}

bool is_ascii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

CPDFXmlReader::CPDFXmlReader(std::string_view text) : m_all(text)
{
    const std::string_view head = text.substr(0, 2);
    if (head == "\xFF\xFE" || head == "\xFE\xFF" || head == std::string_view("\0<", 2) ||
        head == std::string_view("<\0", 2)) {
        fail(0, "the text is UTF-16, not UTF-8");
        return;
    }
    if (text.substr(0, UTF8_MARK.size()) == UTF8_MARK)
        m_at = UTF8_MARK.size();
    check_declaration();
    const size_t wrong = m_fault.empty() ? find_forbidden(text) : NONE;
    if (wrong != NONE)
        fail(wrong, "there is a byte that is not UTF-8, or a control character, which XML forbids");
}

void CPDFXmlReader::check_declaration()
{
    if (!starts("<?xml"))
        return;
    const std::string_view line = m_all.substr(m_at, std::min<size_t>(m_all.find("?>", m_at), m_all.size()) - m_at);
    size_t begin = line.find("encoding");
    begin = begin == NONE ? NONE : line.find_first_of("\"'", begin);
    if (begin == NONE)
        return;
    const size_t end = std::min(line.find(line[begin], begin + 1), line.size());
    const std::string encoding(line.substr(begin + 1, std::max(end, begin + 1) - begin - 1));
    std::string small = encoding.substr(0, 40);
    for (char& c : small)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (small != "utf-8" && small != "utf8" && !is_ascii(m_all))
        fail(m_at, "the text is \"" + encoding.substr(0, 40) + "\", not UTF-8");
}

CPDFXmlReader::TOKEN CPDFXmlReader::fail(size_t at, const std::string& why)
{
    const std::string_view before = m_all.substr(0, at);
    auto line = std::count(before.begin(), before.end(), '\n');
    for (size_t i = before.find('\r'); i != NONE; i = before.find('\r', i + 1))
        line += i + 1 >= m_all.size() || m_all[i + 1] != '\n';
    if (m_fault.empty())
        m_fault = "line " + std::to_string(line + 1) + ": " + why;
    return FAULT;
}

CPDFXmlReader::TOKEN CPDFXmlReader::next()
{
    if (!m_fault.empty())
        return FAULT;
    if (m_is_empty) {
        m_is_empty = false;
        m_open.pop_back();
        return CLOSE;
    }
    while (m_at < m_all.size()) {
        m_piece = m_at;
        if (starts("<!--")) {
            if (!pass("-->"))
                return fail(m_piece, "a comment has no end");
        } else if (starts("<?")) {
            if (!pass("?>"))
                return fail(m_piece, "an instruction has no end");
        } else if (starts("<![CDATA[")) {
            return take_cdata();
        } else if (here() == '<') {
            return read_markup();
        } else if (const TOKEN token = read_text(); token != END) {
            return token;
        }
    }
    m_piece = m_at;
    if (!m_open.empty())
        return fail(m_at, "the text ends inside <" + std::string(m_open.back()) + ">");
    return m_has_root ? END : fail(m_at, "there is no element");
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

CPDFXmlReader::TOKEN CPDFXmlReader::read_markup()
{
    ++m_at;
    if (here() == '!')
        return fail(m_piece, "document types are not supported");
    if (here() != '/')
        return read_open();
    ++m_at;
    return read_close();
}

CPDFXmlReader::TOKEN CPDFXmlReader::read_open()
{
    if (!read_name(m_name))
        return fail(m_piece, "a '<' begins no tag");
    const std::string name(m_name.substr(0, 40));
    if (!read_attributes())
        return fail(m_piece, "the attributes of <" + name + "> can't be read");
    m_is_empty = here() == '/';
    m_at += m_is_empty;
    if (here() != '>')
        return fail(m_piece, "the tag <" + name + "> has no end");
    ++m_at;
    if (m_open.empty() && m_has_root)
        return fail(m_piece, "there is a second root element <" + name + ">");
    if (m_open.size() >= LIMIT_XML_DEPTH)
        return fail(m_piece, "elements nest deeper than " + std::to_string(LIMIT_XML_DEPTH) + " levels");
    m_has_root = true;
    m_open.push_back(m_name);
    return OPEN;
}

CPDFXmlReader::TOKEN CPDFXmlReader::read_close()
{
    if (!read_name(m_name) || m_open.empty() || m_open.back() != m_name)
        return fail(m_piece, m_open.empty() ? "an end tag closes nothing"
                                            : "<" + std::string(m_open.back().substr(0, 40)) + "> is not closed");
    skip_space();
    if (here() != '>')
        return fail(m_piece, "an end tag has no end");
    ++m_at;
    m_open.pop_back();
    return CLOSE;
}

// White space outside the root is nothing: END then.
CPDFXmlReader::TOKEN CPDFXmlReader::read_text()
{
    const size_t end = std::min(m_all.find('<', m_at), m_all.size());
    if (m_open.empty()) {
        skip_space();
        return m_at == end ? END : fail(m_at, "there is text outside the root element");
    }
    m_text.clear();
    if (!decode(m_at, end, false))
        return FAULT;
    m_at = end;
    return TEXT;
}

CPDFXmlReader::TOKEN CPDFXmlReader::take_cdata()
{
    constexpr std::string_view BEGIN = "<![CDATA[";
    const size_t begin = m_at + BEGIN.size();
    if (m_open.empty())
        return fail(m_piece, "there is text outside the root element");
    if (!pass("]]>"))
        return fail(m_piece, "a CDATA section has no end");
    m_text.clear();
    for (size_t i = begin; i + 3 < m_at; ++i) {
        const bool is_return = m_all[i] == '\r';
        m_text += is_return ? '\n' : m_all[i];
        i += is_return && m_all[i + 1] == '\n';
    }
    return TEXT;
}

// Moves behind the next `end`.
bool CPDFXmlReader::pass(std::string_view end)
{
    const size_t found = m_all.find(end, m_at);
    m_at = found == NONE ? m_all.size() : found + end.size();
    return found != NONE;
}

bool CPDFXmlReader::read_attributes()
{
    m_attributes.clear();
    for (skip_space(); is_name_start(here()); skip_space()) {
        std::string_view name;
        read_name(name);
        skip_space();
        if (here() != '=' || m_attributes.size() >= LIMIT_XML_ATTRIBUTES)
            return false;
        ++m_at;
        skip_space();
        const char quote = here();
        const size_t end = quote == '"' || quote == '\'' ? m_all.find(quote, m_at + 1) : NONE;
        m_text.clear();
        if (end == NONE || attribute(name) || !decode(m_at + 1, end, true))
            return false;
        m_attributes.emplace_back(name, m_text);
        m_at = end + 1;
    }
    return true;
}

bool CPDFXmlReader::read_name(std::string_view& name)
{
    const size_t begin = m_at;
    if (is_name_start(here())) {
        while (is_in_name(here()))
            ++m_at;
    }
    name = m_all.substr(begin, m_at - begin);
    return m_at > begin;
}

// Appends character data to m_text. Line ends become LF, white space in attributes a space.
bool CPDFXmlReader::decode(size_t begin, size_t end, bool is_attribute)
{
    const std::string_view special = is_attribute ? "&\r\t\n<" : "&\r";
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

// At the '&' of one of the five entities, or of a character by its number. False, with fault() set, for others.
bool CPDFXmlReader::decode_reference(size_t& at, size_t end)
{
    constexpr size_t LONGEST = 12;
    constexpr std::pair<std::string_view, char> ENTITIES[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''},
    };
    const size_t stop = m_all.substr(at, std::min(end - at, LONGEST)).find(';');
    if (stop == NONE) {
        fail(at, "an '&' begins no entity; it is written \"&amp;\" for itself");
        return false;
    }
    const std::string_view word = m_all.substr(at + 1, stop - 1);
    const size_t start = at;
    at += stop + 1;
    for (const auto& [name, character] : ENTITIES) {
        if (word == name) {
            m_text += character;
            return true;
        }
    }
    const bool is_hex = word.substr(0, 2) == "#x";
    const std::string_view digits = word.substr(std::min<size_t>(is_hex ? 2 : 1, word.size()));
    uint32_t code = 0;
    const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, is_hex ? 16 : 10);
    if (word.substr(0, 1) != "#" || error != std::errc() || last != digits.data() + digits.size() ||
        !is_xml_character(code)) {
        fail(start, "there is no entity \"&" + std::string(word) + ";\"");
        return false;
    }
    char bytes[4];
    m_text.append(bytes, static_cast<size_t>(utf8_from_ucs(code, bytes)));
    return true;
}

void CPDFXmlReader::skip_space()
{
    while (is_white(here()))
        ++m_at;
}
