// The lexical level of a PDF file (ISO 32000-2, 7.2 and 7.3): a cursor over bytes that knows tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

enum PDF_CHAR_CLASS : uint8_t {
    CHAR_REGULAR = 0,
    CHAR_SPACE = 1,
    CHAR_DELIMITER = 2,
    CHAR_HASH = 4,     // regular, but it may begin an escape in a name
    CHAR_KEYWORD = 8,  // regular, but it may begin a word that ends an object
    CHAR_POINT = 16,   // regular; the decimal point
};

extern const uint8_t PDF_CHAR_CLASSES[256];

inline bool is_space(uint8_t c)
{
    return PDF_CHAR_CLASSES[c] == CHAR_SPACE;
}

inline bool is_regular(uint8_t c)
{
    return !(PDF_CHAR_CLASSES[c] & (CHAR_SPACE | CHAR_DELIMITER));
}

inline bool is_digit(uint8_t c)
{
    return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit, or -1.
int hex_digit(uint8_t c);

// Reads forward over bytes that it borrows. Nothing here goes past the end.
class CPDFLexer {
public:
    CPDFLexer(const uint8_t* begin, const uint8_t* end) : m_at(begin), m_end(end) {}

    const uint8_t* at() const { return m_at; }
    const uint8_t* end() const { return m_end; }
    bool done() const { return m_at >= m_end; }
    size_t left() const { return static_cast<size_t>(m_end - m_at); }
    void move_to(const uint8_t* at) { m_at = at; }

    // The byte `ahead` of the cursor, 0 past the end.
    uint8_t peek(size_t ahead = 0) const { return ahead < left() ? m_at[ahead] : 0; }

    // Steps over white space and comments.
    void skip_space()
    {
        if (m_at < m_end && (is_space(*m_at) || *m_at == '%'))
            skip_space_run();
    }

    // Steps over regular characters. Returns whether '#' was among them.
    bool skip_regular()
    {
        const uint8_t* at = m_at;  // a local cursor stays in a register
        unsigned seen = 0;
        for (; at < m_end; ++at) {
            const unsigned kind = PDF_CHAR_CLASSES[*at];
            if (kind & (CHAR_SPACE | CHAR_DELIMITER))
                break;
            seen |= kind;
        }
        m_at = at;
        return (seen & CHAR_HASH) != 0;
    }

    // Whether `word` stands at the cursor; a regular character right behind it spoils the match. accept also steps over
    // it; both leave the cursor alone when there is no match.
    bool starts(const char* word) const;
    bool accept(const char* word);

    // Whether the bytes of `word` stand at the cursor, whatever follows.
    bool begins(const char* word) const;

    // Reads "num gen obj", the start of an object; some writers leave no space behind it. When false, the cursor is where
    // the text differs.
    bool accept_object(uint32_t& num, uint32_t& gen);

    // Reads an unsigned decimal number at the cursor. Returns false, with the cursor where it was, when there is no digit
    // there or the number does not fit 32 bits.
    bool read_u32(uint32_t& out);

    // Steps over one string, whose opening delimiter is at the cursor. Returns whether its bytes need decoding.
    bool skip_literal();
    // The same for a hexadecimal string.
    void skip_hex();

    // Steps over one value of a dictionary, up to the next key or the end of the dictionary. False when it nests too
    // deep.
    bool skip_dict_value();

private:
    void skip_space_run();

    const uint8_t* m_at;   // borrowed
    const uint8_t* m_end;  // borrowed
};
