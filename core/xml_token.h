// The lexical level of XML 1.0, for everything that reads, checks or writes XML: what a character is, and a cursor that
// cuts a text of unknown origin into pieces. One pass, no memory of its own; what a text may hold is its users' affair.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Whether XML has the character at all (XML 1.0, 2.2).
constexpr bool is_xml_char(uint32_t c)
{
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

// The position of the first byte of `text` that begins no such character in UTF-8; npos when all of it is fine.
size_t find_xml_forbidden(std::string_view text);

// Whether `name` could be the name of an element or attribute: of bytes beyond ASCII all are taken.
bool is_xml_name_like(std::string_view name);

// The encoding that the XML declaration at the start of `text` names: "UTF-8" when it names none, "" when it can't be
// read.
std::string_view xml_encoding(std::string_view text);

// The character that the reference `&word;` stands for: one of the five entities, or a character by its number. 0 for others.
uint32_t xml_reference(std::string_view word);

// Whether `text` is `small`, a word in small letters, with letters of either case.
bool is_same_word(std::string_view text, std::string_view small);

// text := [mark] ( chars | comment | instruction | cdata | declaration | tag )*
// tag := '<' name ( name '=' quoted )* '/'? '>' | '</' name '>'
//
// All views are parts of the text, which is borrowed. A name is whatever stands up to the next delimiter.
class CPDFXmlLexer {
public:
    enum PIECE {
        TEXT,  // up to the next '<'; white space counts
        COMMENT,
        INSTRUCTION,  // the XML declaration, too
        CDATA,
        DECLARATION,  // of a document type, with all that it holds
        OPEN,         // the start of a tag with its name: attributes follow, then end_tag
        CLOSE,        // the start of an end tag with its name: end_tag follows
        END,
    };

    // A byte order mark is passed over.
    explicit CPDFXmlLexer(std::string_view text);

    // Moves over the next piece, of a tag over "<name" or "</name".
    PIECE next();

    // Moves over the next attribute of the tag. False where there is none.
    bool next_attribute();

    // Moves over the end of the tag. False when it is not there.
    bool end_tag();

    // Whether the piece has no end, and goes on to that of the text, or an attribute no value.
    bool is_broken() const { return m_is_broken; }

    // The name of the tag; what the attribute says, and its value as it stands between the quotes.
    std::string_view name() const { return m_name; }
    std::string_view attribute() const { return m_attribute; }
    std::string_view value() const { return m_value; }

    // Whether the tag that ended is that of an empty element.
    bool is_empty() const { return m_is_empty; }

    // Where the last piece begins, and where the cursor is.
    size_t begin() const { return m_begin; }
    size_t at() const { return m_at; }

private:
    PIECE pass(PIECE piece, size_t from, std::string_view end);
    void pass_declaration();
    std::string_view take_name();
    void skip_space();
    bool starts(std::string_view mark) const { return m_text.substr(m_at, mark.size()) == mark; }

    std::string_view m_text;
    size_t m_at = 0;
    size_t m_begin = 0;
    std::string_view m_name;
    std::string_view m_attribute;
    std::string_view m_value;
    PIECE m_piece = END;
    bool m_is_broken = false;
    bool m_is_empty = false;
};
