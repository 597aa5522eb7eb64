// The object level of a PDF file (ISO 32000-2, 7.3): builds object values straight from bytes.
#pragma once

#include <cstdint>

#include "core/object.h"
#include "file/syntax/lexer.h"

class CPDFDictionary;
class CPDFKeySet;

// Parses the objects of one run of bytes, leniently: what is malformed becomes null or ends its container.
class CPDFParser {
public:
    // `file` is the first byte of the file that the bytes lie in, for the byte range of dictionaries; null for decoded
    // data.
    CPDFParser(const uint8_t* begin, const uint8_t* end, const uint8_t* file) : m_lexer(begin, end), m_file(file) {}

    CPDFLexer& lexer() { return m_lexer; }

    // Parses the object at the cursor into `out`, which is at tag 0. With `keys`, a dictionary comes with only those
    // entries. Returns false, with `out` at tag 0, when there is none or it exceeds the limits.
    bool parse(CPDFObj& out, const CPDFKeySet* keys);

    // What the values built so far cost beyond their bytes in the file: memory, in bytes.
    size_t work() const { return m_values * sizeof(CPDFObj) + m_blocks * BLOCK_SIZE; }

private:
    static constexpr size_t BLOCK_SIZE = 32;  // the least that an allocation takes

    bool parse_value(CPDFObj& out);
    void parse_dict(CPDFObj& out, const CPDFKeySet* keys);
    void parse_entry(CPDFDictionary& dict, const CPDFKeySet* keys);
    void parse_array(CPDFObj& out);
    void parse_name(CPDFObj& out);
    void parse_literal(CPDFObj& out);
    void parse_hex(CPDFObj& out);
    void parse_number(CPDFObj& out);
    bool parse_keyword(CPDFObj& out);
    bool accept_reference(CPDFObj& out, uint32_t num);

    CPDFLexer m_lexer;
    const uint8_t* m_file;  // borrowed, may be null
    int m_depth = 0;
    size_t m_values = 0;
    size_t m_blocks = 0;  // the values that have memory of their own
    bool m_over_limit = false;
};
