#include "appearance/font/cmap.h"

#include <algorithm>

#include "core/limits.h"
#include "file/syntax/lexer.h"

namespace {

enum class TOKEN : uint8_t { END, HEX, NUMBER, OPEN, CLOSE, NAME, WORD, OTHER };

struct CMAP_TOKEN {
    TOKEN kind = TOKEN::END;
    uint32_t number = 0;         // of a number, and of the last four bytes of a hexadecimal string
    int bytes = 0;               // of a hexadecimal string
    char32_t character = 0;      // what such a string spells in UTF-16, when that is exactly one character
    std::string_view word = {};  // and of a name, without its slash
};

// The character of one or two UTF-16 units in `value`, 0 for anything else.
char32_t character_of(uint64_t value, int bytes)
{
    if (bytes <= 2)
        return value >= 0xD800 && value < 0xE000 ? 0 : static_cast<char32_t>(value);
    const auto high = static_cast<char32_t>(value >> 16);
    const auto low = static_cast<char32_t>(value & 0xFFFF);
    const bool pair = bytes == 4 && high >= 0xD800 && high < 0xDC00 && low >= 0xDC00 && low < 0xE000;
    return pair ? 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00) : 0;
}

// Whether a text can hold the character; writers map codes without a meaning to the others.
bool is_text(char32_t c)
{
    return c >= ' ' && c != 0xFFFD && c != 0xFFFE && c != 0xFFFF && c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000);
}

class CMapReader {
public:
    explicit CMapReader(std::string_view bytes)
        : m_lexer(reinterpret_cast<const uint8_t*>(bytes.data()),
                  reinterpret_cast<const uint8_t*>(bytes.data()) + bytes.size())
    {
    }

    FONT_CMAP read();

private:
    CMAP_TOKEN next();
    CMAP_TOKEN next_hex();
    CMAP_TOKEN next_word();
    void read_section(std::string_view word);
    void read_target(uint32_t first, uint32_t last, const CMAP_TOKEN& target);
    void read_targets(uint32_t first, uint32_t last);
    void add_character(uint32_t code, char32_t character);
    void add_cid(uint32_t code, uint32_t cid);
    void note_length(int bytes);

    CPDFLexer m_lexer;
    FONT_CMAP m_map;
    bool m_mixed = false;                   // codes differ in length
    size_t m_left = LIMIT_FONT_CHARACTERS;  // codes that may still be told
};

CMAP_TOKEN CMapReader::next_hex()
{
    CMAP_TOKEN token{.kind = TOKEN::HEX};
    uint64_t value = 0;
    int digits = 0;
    for (m_lexer.move_to(m_lexer.at() + 1); !m_lexer.done(); m_lexer.move_to(m_lexer.at() + 1)) {
        if (m_lexer.peek() == '>') {
            m_lexer.move_to(m_lexer.at() + 1);
            break;
        }
        const int digit = hex_digit(m_lexer.peek());
        if (digit < 0)
            continue;
        value = value << 4 | static_cast<uint64_t>(digit);
        digits = std::min(digits + 1, 16);
    }
    if (digits % 2)
        value <<= 4;
    token.bytes = (digits + 1) / 2;
    token.number = static_cast<uint32_t>(value);
    token.character = character_of(value, token.bytes);
    return token;
}

CMAP_TOKEN CMapReader::next_word()
{
    CMAP_TOKEN token{.kind = TOKEN::WORD};
    const uint8_t* begin = m_lexer.at();
    if (m_lexer.read_u32(token.number) && !is_regular(m_lexer.peek())) {
        token.kind = TOKEN::NUMBER;
        return token;
    }
    m_lexer.skip_regular();
    token.word = {reinterpret_cast<const char*>(begin), static_cast<size_t>(m_lexer.at() - begin)};
    return token;
}

CMAP_TOKEN CMapReader::next()
{
    m_lexer.skip_space();
    if (m_lexer.done())
        return {};
    const uint8_t c = m_lexer.peek();
    if (is_regular(c))
        return next_word();
    if (c == '<' && m_lexer.peek(1) != '<')
        return next_hex();
    if (c == '(') {
        m_lexer.skip_literal();
        return {.kind = TOKEN::OTHER};
    }
    m_lexer.move_to(m_lexer.at() + (c == '<' ? 2 : 1));
    if (c == '/') {
        CMAP_TOKEN name = next_word();
        name.kind = TOKEN::NAME;
        return name;
    }
    return {.kind = c == '[' ? TOKEN::OPEN : c == ']' ? TOKEN::CLOSE : TOKEN::OTHER};
}

void CMapReader::note_length(int bytes)
{
    m_mixed |= m_map.code_bytes && m_map.code_bytes != bytes;
    m_map.code_bytes = bytes;
}

void CMapReader::add_character(uint32_t code, char32_t character)
{
    if (is_text(character))
        m_map.characters.push_back({code, character});
}

void CMapReader::add_cid(uint32_t code, uint32_t cid)
{
    if (cid <= 0xFFFF)
        m_map.cids.push_back({code, cid});
}

// What the codes from `first` to `last` mean: `target` and what follows it.
void CMapReader::read_target(uint32_t first, uint32_t last, const CMAP_TOKEN& target)
{
    if (!(target.kind == TOKEN::NUMBER && target.number <= 0xFFFF) && !target.character)
        return;
    for (uint32_t i = 0; i <= last - first && m_left > 0; ++i, --m_left) {
        if (target.kind == TOKEN::NUMBER)
            add_cid(first + i, target.number + i);
        else
            add_character(first + i, target.character + i);
    }
}

// The same where each code has a target of its own, up to the closing bracket.
void CMapReader::read_targets(uint32_t first, uint32_t last)
{
    uint64_t code = first;
    for (CMAP_TOKEN target = next(); target.kind == TOKEN::HEX; target = next(), ++code) {
        if (code > last || m_left == 0)
            continue;
        add_character(static_cast<uint32_t>(code), target.character);
        --m_left;
    }
}

// The entries between "begin..." and "end...": a code, or the first and the last of a range, and what they mean.
void CMapReader::read_section(std::string_view word)
{
    const bool range = word.ends_with("range");
    const bool space = word == "begincodespacerange";
    for (CMAP_TOKEN first = next(); first.kind == TOKEN::HEX; first = next()) {
        const CMAP_TOKEN last = range ? next() : first;
        if (last.kind != TOKEN::HEX || last.number < first.number)
            return;
        if (space) {
            note_length(first.bytes);
            continue;
        }
        const CMAP_TOKEN target = next();
        if (target.kind == TOKEN::OPEN)
            read_targets(first.number, last.number);
        else if (target.kind == TOKEN::WORD || target.kind == TOKEN::END)
            return;
        else
            read_target(first.number, last.number, target);
    }
}

FONT_CMAP CMapReader::read()
{
    std::string_view name;  // the last one
    for (CMAP_TOKEN token = next(); token.kind != TOKEN::END; token = next()) {
        if (token.kind == TOKEN::NAME)
            name = token.word;
        if ((token.kind == TOKEN::NUMBER && token.number == 1 && name == "WMode") || token.word == "usecmap")
            m_map.complete = false;
        constexpr std::string_view SECTIONS[] = {"begincodespacerange", "beginbfchar", "beginbfrange", "begincidchar",
                                                 "begincidrange"};
        if (std::ranges::find(SECTIONS, token.word) != std::end(SECTIONS))
            read_section(token.word);
    }
    if (m_mixed)
        m_map.code_bytes = 0;
    return std::move(m_map);
}

}  // namespace

FONT_CMAP read_cmap(std::string_view bytes)
{
    return CMapReader(bytes).read();
}
