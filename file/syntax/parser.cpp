#include "file/syntax/parser.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/key_set.h"
#include "core/limits.h"

namespace {

// A name as it stands in the file, with #xx decoded only where it occurs.
class RawName {
public:
    explicit RawName(CPDFLexer& lexer)
    {
        const uint8_t* begin = lexer.at();
        const bool escaped = lexer.skip_regular();
        m_text = reinterpret_cast<const char*>(begin);
        m_len = static_cast<size_t>(lexer.at() - begin);
        if (escaped)
            decode();
    }

    const char* text() const { return m_text; }
    size_t len() const { return m_len; }

private:
    void decode()
    {
        m_decoded = std::make_unique<std::string>();
        m_decoded->reserve(m_len);
        for (size_t i = 0; i < m_len; ++i) {
            const bool coded = m_text[i] == '#' && i + 2 < m_len && digit(i + 1) >= 0 && digit(i + 2) >= 0;
            // A name holds no byte 0.
            const bool escaped = coded && digit(i + 1) + digit(i + 2) > 0;
            *m_decoded += escaped ? static_cast<char>(digit(i + 1) * 16 + digit(i + 2)) : m_text[i];
            i += escaped ? 2 : 0;
        }
        m_text = m_decoded->data();
        m_len = m_decoded->size();
    }

    int digit(size_t at) const { return hex_digit(static_cast<uint8_t>(m_text[at])); }

    const char* m_text = nullptr;  // borrowed from the file, or from m_decoded
    size_t m_len = 0;
    std::unique_ptr<std::string> m_decoded;  // seldom made: names with an escape are rare
};

// Decodes the body of a literal string into `out`, which has room for all of it; returns the end.
uint8_t* decode_literal(const uint8_t* p, const uint8_t* end, uint8_t* out)
{
    while (p < end) {
        uint8_t c = *p++;
        if (c == '\r') {
            p += p < end && *p == '\n';
            c = '\n';
        } else if (c == '\\' && p < end) {
            c = *p++;
            if (c >= '0' && c <= '7') {
                unsigned code = c - '0';
                for (int i = 0; i < 2 && p < end && *p >= '0' && *p <= '7'; ++i)
                    code = code * 8 + (*p++ - '0');
                c = static_cast<uint8_t>(code);
            } else if (c == '\r' || c == '\n') {
                p += c == '\r' && p < end && *p == '\n';
                continue;
            } else {
                constexpr char LETTERS[] = "nrtbf";
                constexpr char CODES[] = "\n\r\t\b\f";
                const char* letter = static_cast<const char*>(std::memchr(LETTERS, c, 5));
                c = letter ? static_cast<uint8_t>(CODES[letter - LETTERS]) : c;
            }
        }
        *out++ = c;
    }
    return out;
}

// A real with `frac_digits` decimals in `frac` as fixed point, rounded; numbers beyond the range stay at its end.
VXFIX fixed_of(uint64_t whole, uint64_t frac, int frac_digits, bool negative)
{
    constexpr uint64_t LARGEST = (uint64_t{1} << 37) - 1;
    uint64_t scale = 1;
    for (int i = 0; i < frac_digits; ++i)
        scale *= 10;
    if (whole > LARGEST)
        whole = LARGEST;
    const uint64_t fixed = std::min<uint64_t>((whole << 26) + ((frac << 26) + scale / 2) / scale, INT64_MAX);
    return negative ? -static_cast<VXFIX>(fixed) : static_cast<VXFIX>(fixed);
}

}  // namespace

bool CPDFParser::parse(CPDFObj& out, const CPDFKeySet* keys)
{
    m_lexer.skip_space();
    bool found = true;
    if (keys && m_lexer.peek() == '<' && m_lexer.peek(1) == '<')
        parse_dict(out, keys);
    else
        found = parse_value(out);
    if (!m_over_limit)
        return found;
    out.free();
    return false;
}

bool CPDFParser::parse_value(CPDFObj& out)
{
    m_lexer.skip_space();
    if (++m_values > LIMIT_OBJECT_VALUES)
        m_over_limit = true;
    if (m_lexer.done() || m_over_limit)
        return false;
    switch (m_lexer.peek()) {
    case '/':
        ++m_blocks;
        parse_name(out);
        return true;
    case '(':
        ++m_blocks;
        parse_literal(out);
        return true;
    case '<':
        ++m_blocks;
        if (m_lexer.peek(1) == '<')
            parse_dict(out, nullptr);
        else
            parse_hex(out);
        return true;
    case '[':
        ++m_blocks;
        parse_array(out);
        return true;
    case '0':
    case '1':
    case '2':
    case '3':
    case '4':
    case '5':
    case '6':
    case '7':
    case '8':
    case '9':
    case '+':
    case '-':
    case '.':
        parse_number(out);
        return true;
    default:
        return parse_keyword(out);
    }
}

void CPDFParser::parse_dict(CPDFObj& out, const CPDFKeySet* keys)
{
    if (m_depth >= LIMIT_OBJECT_DEPTH) {
        m_over_limit = true;
        return;
    }
    const uint8_t* begin = m_lexer.at();
    m_lexer.move_to(begin + 2);
    CPDFDictionary* dict = out.set_dict();
    if (!dict) {
        m_over_limit = true;
        return;
    }
    ++m_depth;
    for (;;) {
        m_lexer.skip_space();
        const uint8_t c = m_lexer.peek();
        if (c == '/') {
            parse_entry(*dict, keys);
            if (m_over_limit)
                break;
            continue;
        }
        if (c == '>') {
            m_lexer.move_to(m_lexer.at() + (m_lexer.peek(1) == '>' ? 2 : 1));
            break;
        }
        // What is no key: the end of the object closes the dictionary, anything else is stepped over.
        if (m_lexer.done() || m_lexer.starts("endobj") || m_lexer.starts("stream"))
            break;
        CPDFObj stray;
        if (!parse_value(stray)) {
            if (m_over_limit)
                break;
            m_lexer.move_to(m_lexer.at() + 1);
        }
    }
    --m_depth;
    dict->sort_items();
    if (m_file) {
        dict->src_begin = begin - m_file;
        dict->src_end = m_lexer.at() - m_file;
    }
}

void CPDFParser::parse_entry(CPDFDictionary& dict, const CPDFKeySet* keys)
{
    m_lexer.move_to(m_lexer.at() + 1);
    const RawName key(m_lexer);
    if (keys && !keys->contains(key.text(), key.len())) {
        m_over_limit = !m_lexer.skip_dict_value();
        return;
    }
    CPDFObj value;
    m_lexer.skip_space();
    if (m_lexer.peek() == '>' || !parse_value(value) || value.type == PDF_OBJ_NULL)
        return;
    if (CPDFObj* slot = dict.append_unsorted(key.text(), key.len()))
        slot->take(value);
}

void CPDFParser::parse_array(CPDFObj& out)
{
    if (m_depth >= LIMIT_OBJECT_DEPTH) {
        m_over_limit = true;
        return;
    }
    m_lexer.move_to(m_lexer.at() + 1);
    CPDFArray* array = out.set_array();
    if (!array) {
        m_over_limit = true;
        return;
    }
    ++m_depth;
    for (;;) {
        m_lexer.skip_space();
        if (m_lexer.peek() == ']') {
            m_lexer.move_to(m_lexer.at() + 1);
            break;
        }
        if (m_lexer.done() || m_lexer.peek() == '>' || m_lexer.starts("endobj"))
            break;
        CPDFObj* element = array->append();
        if (!element) {
            m_over_limit = true;
            break;
        }
        if (!parse_value(*element)) {
            if (m_over_limit)
                break;
            m_lexer.move_to(m_lexer.at() + 1);
        }
    }
    --m_depth;
}

void CPDFParser::parse_name(CPDFObj& out)
{
    m_lexer.move_to(m_lexer.at() + 1);
    const RawName raw(m_lexer);
    auto* name = static_cast<char*>(VXAlloc(raw.len() + 1));
    if (!name)
        return;
    std::memcpy(name, raw.text(), raw.len());
    name[raw.len()] = 0;
    out.name = name;
    out.type = PDF_OBJ_NAME;
}

void CPDFParser::parse_literal(CPDFObj& out)
{
    const uint8_t* begin = m_lexer.at() + 1;
    const bool coded = m_lexer.skip_literal();
    const uint8_t* end = m_lexer.at();
    // A string that the data ends in keeps all of it; otherwise the closing parenthesis is left out.
    if (end > begin && end[-1] == ')')
        --end;
    const auto room = static_cast<size_t>(end - begin);
    out.type = PDF_OBJ_STRING;
    auto* bytes = static_cast<uint8_t*>(room < INT32_MAX ? VXAlloc(room + 1) : nullptr);
    if (!bytes)
        return;
    uint8_t* last = bytes + room;
    if (coded)
        last = decode_literal(begin, end, bytes);
    else
        std::memcpy(bytes, begin, room);
    *last = 0;
    out.str = {static_cast<int32_t>(last - bytes), bytes};
}

void CPDFParser::parse_hex(CPDFObj& out)
{
    const uint8_t* p = m_lexer.at() + 1;
    m_lexer.skip_hex();
    const uint8_t* end = m_lexer.at();
    const auto room = static_cast<size_t>(end - p) / 2 + 1;
    out.type = PDF_OBJ_STRING;
    auto* bytes = static_cast<uint8_t*>(room < INT32_MAX ? VXAlloc(room + 1) : nullptr);
    if (!bytes)
        return;
    uint8_t* last = bytes;
    int high = -1;
    for (; p < end; ++p) {
        const int digit = hex_digit(*p);
        if (digit < 0)
            continue;
        if (high >= 0)
            *last++ = static_cast<uint8_t>(high * 16 + digit);
        high = high >= 0 ? -1 : digit;
    }
    if (high >= 0)
        *last++ = static_cast<uint8_t>(high * 16);
    *last = 0;
    out.str = {static_cast<int32_t>(last - bytes), bytes};
}

bool CPDFParser::accept_reference(CPDFObj& out, uint32_t num)
{
    constexpr uint32_t LARGEST_GENERATION = 65535;
    const uint8_t* back = m_lexer.at();
    uint32_t gen = 0;
    const auto is_gap = [this] { return is_space(m_lexer.peek()) || m_lexer.peek() == '%'; };
    if (is_gap()) {
        m_lexer.skip_space();
        if (m_lexer.read_u32(gen) && is_gap()) {
            m_lexer.skip_space();
            if (m_lexer.peek() == 'R' && !is_regular(m_lexer.left() > 1 ? m_lexer.peek(1) : ' ')) {
                m_lexer.move_to(m_lexer.at() + 1);
                out.set_ref({num, std::min(gen, LARGEST_GENERATION)});
                return true;
            }
        }
    }
    m_lexer.move_to(back);
    return false;
}

void CPDFParser::parse_number(CPDFObj& out)
{
    constexpr uint64_t WHOLE_MAX = uint64_t{1} << 53;
    constexpr int FRAC_DIGITS = 9;
    const uint8_t* p = m_lexer.at();
    const uint8_t* end = m_lexer.end();
    const bool signed_number = !is_digit(*p);
    bool negative = false;
    for (; p < end && (*p == '+' || *p == '-'); ++p)
        negative = negative || *p == '-';
    uint64_t whole = 0;
    for (; p < end && is_digit(*p); ++p)
        whole = whole < WHOLE_MAX ? whole * 10 + (*p - '0') : whole;
    bool real = false;
    uint64_t frac = 0;
    int frac_digits = 0;
    if (p < end && *p == '.') {
        real = true;
        for (++p; p < end && is_digit(*p); ++p) {
            if (frac_digits < FRAC_DIGITS) {
                frac = frac * 10 + (*p - '0');
                ++frac_digits;
            }
        }
    }
    m_lexer.move_to(p);
    if (!real && whole <= static_cast<uint64_t>(INT32_MAX) + negative) {
        if (!signed_number && accept_reference(out, static_cast<uint32_t>(whole)))
            return;
        out.set_int(static_cast<int32_t>(negative ? -static_cast<int64_t>(whole) : static_cast<int64_t>(whole)));
    } else {
        out.set_real(fixed_of(whole, frac, frac_digits, negative));
    }
    m_lexer.skip_regular();  // the rest of a malformed number
}

bool CPDFParser::parse_keyword(CPDFObj& out)
{
    const uint8_t* begin = m_lexer.at();
    if (m_lexer.accept("true")) {
        out.set_bool(1);
        return true;
    }
    if (m_lexer.accept("false")) {
        out.set_bool(0);
        return true;
    }
    if (m_lexer.accept("null"))
        return true;
    if (m_lexer.starts("endobj") || m_lexer.starts("endstream") || m_lexer.starts("stream"))
        return false;
    m_lexer.skip_regular();  // an unknown word reads as null
    return m_lexer.at() > begin;
}
