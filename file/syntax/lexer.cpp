#include "file/syntax/lexer.h"

#include <cstring>

#include "core/limits.h"

namespace {

constexpr uint8_t S = CHAR_SPACE;
constexpr uint8_t D = CHAR_DELIMITER;
constexpr uint8_t H = CHAR_HASH;
constexpr uint8_t K = CHAR_KEYWORD;
constexpr uint8_t P = CHAR_POINT;

}  // namespace

// clang-format off
const uint8_t PDF_CHAR_CLASSES[256] = {
    S, 0, 0, 0, 0, 0, 0, 0, 0, S, S, 0, S, S, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    S, 0, 0, H, 0, D, 0, 0, D, D, 0, 0, 0, 0, P, D,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0, 0,
    0, 0, 0, 0, 0, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, K, 0, 0, 0, 0, 0, 0, 0, D, 0, D, 0, 0,
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

bool CPDFLexer::begins(const char* word) const
{
    const size_t size = std::strlen(word);
    return left() >= size && std::memcmp(m_at, word, size) == 0;
}

bool CPDFLexer::starts(const char* word) const
{
    const size_t size = std::strlen(word);
    return begins(word) && (left() == size || !is_regular(m_at[size]));
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

bool CPDFLexer::accept_object(uint32_t& num, uint32_t& gen)
{
    if (!read_u32(num))
        return false;
    skip_space();
    if (!read_u32(gen))
        return false;
    skip_space();
    if (!begins("obj"))
        return false;
    m_at += 3;
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

// The cursor stands behind a key, so there is a byte before it. Inside containers only delimiters matter; behind the
// first token of the value a '/' is the next key. Containers end where the parser ends them, in damaged objects too:
// otherwise an object would have other entries once it is read as a whole.
bool CPDFLexer::skip_dict_value()
{
    skip_space();
    if (peek() == '/') {
        ++m_at;
        skip_regular();
    }
    bool is_dict[LIMIT_OBJECT_DEPTH];  // of the open containers
    int depth = 0;
    const uint8_t* at = m_at;
    const uint8_t* const end = m_end;
    while (at < end) {
        const uint8_t c = *at;
        if (!(PDF_CHAR_CLASSES[c] & (CHAR_DELIMITER | CHAR_KEYWORD))) {
            ++at;
            continue;
        }
        if (PDF_CHAR_CLASSES[c] == CHAR_KEYWORD) {
            if (!is_regular(at[-1]) && at[-1] != '/') {
                m_at = at;
                if (starts("stream")) {
                    while (depth > 0 && is_dict[depth - 1])
                        --depth;
                }
                if (starts("endobj") || (depth == 0 && starts("stream")))
                    return true;
            }
            ++at;
            continue;
        }
        if (c == '>') {
            while (depth > 0 && !is_dict[depth - 1])
                --depth;
        }
        if (depth == 0 && (c == '/' || c == '>'))
            break;
        const bool twice = at + 1 < end && at[1] == c;
        if (c == '(' || c == '%' || (c == '<' && !twice)) {
            m_at = at;
            if (c == '(')
                skip_literal();
            else if (c == '<')
                skip_hex();
            else
                skip_space_run();
            at = m_at;
            continue;
        }
        if (c == '[' || c == '<') {
            // The dictionary around the value is a level, too.
            if (depth == LIMIT_OBJECT_DEPTH - 1)
                return false;
            is_dict[depth++] = c == '<';
        } else if (c == '>' || (c == ']' && depth > 0 && !is_dict[depth - 1])) {
            --depth;
        }
        at += (c == '<' || c == '>') && twice ? 2 : 1;
    }
    m_at = at;
    return true;
}
