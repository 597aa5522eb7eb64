#include "document/lexer.h"

#include <cstring>

namespace {

constexpr uint8_t S = CHAR_SPACE;
constexpr uint8_t D = CHAR_DELIMITER;
constexpr uint8_t H = CHAR_HASH;

}  // namespace

// clang-format off
const uint8_t PDF_CHAR_CLASSES[256] = {
    S, 0, 0, 0, 0, 0, 0, 0, 0, S, S, 0, S, S, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    S, 0, 0, H, 0, D, 0, 0, D, D, 0, 0, 0, 0, 0, D,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0, 0,
};
// clang-format on

int hex_digit(uint8_t c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

void CPDFLexer::skip_space_run()
{
    const uint8_t* at = m_at;
    while (at < m_end && (is_space(*at) || *at == '%')) {
        if (*at++ == '%') {
            while (at < m_end && *at != '\n' && *at != '\r')
                ++at;
        }
    }
    m_at = at;
}

bool CPDFLexer::starts(const char* word) const
{
    const size_t size = std::strlen(word);
    return left() >= size && std::memcmp(m_at, word, size) == 0 && (left() == size || !is_regular(m_at[size]));
}

bool CPDFLexer::accept(const char* word)
{
    if (!starts(word))
        return false;
    m_at += std::strlen(word);
    return true;
}

bool CPDFLexer::read_u32(uint32_t& out)
{
    const uint8_t* p = m_at;
    uint64_t value = 0;
    while (p < m_end && is_digit(*p)) {
        value = value * 10 + (*p++ - '0');
        if (value > UINT32_MAX)
            return false;
    }
    if (p == m_at)
        return false;
    m_at = p;
    out = static_cast<uint32_t>(value);
    return true;
}

bool CPDFLexer::skip_literal()
{
    const uint8_t* at = m_at;
    int depth = 0;
    bool coded = false;
    while (at < m_end) {
        const uint8_t c = *at++;
        if (c > '\\')
            continue;
        if (c == '\\') {
            at += at < m_end;
            coded = true;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (--depth == 0)
                break;
        } else if (c == '\r') {
            coded = true;
        }
    }
    m_at = at;
    return coded;
}

void CPDFLexer::skip_hex()
{
    const uint8_t* at = m_at;
    while (at < m_end && *at != '>')
        ++at;
    m_at = at + (at < m_end);
}

// The cursor stands behind a key, so there is a byte before it. Inside containers only delimiters matter; behind the first token of the value a '/' is the next key.
void CPDFLexer::skip_dict_value()
{
    skip_space();
    if (peek() == '/') {
        ++m_at;
        skip_regular();
    }
    const uint8_t* at = m_at;
    const uint8_t* const end = m_end;
    int depth = 0;
    while (at < end) {
        const uint8_t c = *at;
        if (!(PDF_CHAR_CLASSES[c] & CHAR_DELIMITER)) {
            if (c == 'e' && end - at >= 6 && !is_regular(at[-1]) && std::memcmp(at, "endobj", 6) == 0)
                break;
            ++at;
            continue;
        }
        if (depth <= 0 && (c == '/' || c == '>'))
            break;
        const bool twice = at + 1 < end && at[1] == c;
        switch (c) {
        case '(':
            m_at = at;
            skip_literal();
            at = m_at;
            break;
        case '%':
            m_at = at;
            skip_space_run();
            at = m_at;
            break;
        case '<':
            if (!twice) {
                m_at = at;
                skip_hex();
                at = m_at;
                break;
            }
            at += 2;
            ++depth;
            break;
        case '>':
            at += twice ? 2 : 1;
            --depth;
            break;
        default:
            depth += (c == '[') - (c == ']');
            ++at;
            break;
        }
    }
    m_at = at;
}
