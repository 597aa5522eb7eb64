#include <cstring>

#include "core/alloc.h"
#include "core/text.h"
#include "core/xml_token.h"

namespace {

constexpr char HEX[] = "0123456789ABCDEF";
constexpr int SCRATCH_CHARS = 512;
constexpr int SHORT_TEXT = 127;

// Collects encoded bytes; a piece that does not fit whole ends the output.
class Sink {
public:
    Sink(char* out, int max) : m_out(out), m_max(max < 0 ? 0 : max) {}

    bool put(const char* piece, int size)
    {
        if (size > m_max - m_len)
            return false;
        std::memcpy(m_out + m_len, piece, static_cast<size_t>(size));
        m_len += size;
        return true;
    }

    int finish()
    {
        m_out[m_len] = 0;
        return m_len;
    }

private:
    char* m_out;  // borrowed from the caller
    int m_max;
    int m_len = 0;
};

const char* xml_entity(uint32_t c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&apos;";
    default:
        return nullptr;
    }
}

bool is_url_literal(uint32_t c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' ||
           c == '_' || c == '~' || c == '[' || c == ']' || c == '#';
}

bool put_utf8(Sink& sink, uint32_t c)
{
    char bytes[4];
    return sink.put(bytes, utf8_from_ucs(c, bytes));
}

bool put_url(Sink& sink, uint32_t c)
{
    if (c >= 0x80 || is_url_literal(c))
        return put_utf8(sink, c);
    if (c == ' ')
        return sink.put("+", 1);
    const char escaped[3] = {'%', HEX[c >> 4], HEX[c & 15]};
    return sink.put(escaped, 3);
}

bool is_wire_char(unsigned char c)
{
    return c > ' ' && c < 0x7F && c != '#' && c != '[' && c != ']';
}

}  // namespace

int utf8_from_ucs(uint32_t c, char out[4])
{
    if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
        c = 0xFFFD;
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    const int size = c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    for (int i = size - 1; i > 0; --i) {
        out[i] = static_cast<char>(0x80 | (c & 0x3F));
        c >>= 6;
    }
    out[0] = static_cast<char>((0xF00 >> size) | c);
    return size;
}

int ucs_len(const wchar_t* w)
{
    int len = 0;
    while (w[len])
        ++len;
    return len;
}

int ucs_cmp(const wchar_t* a, const wchar_t* b)
{
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return *a != *b;
}

int cvt_utoxml(const wchar_t* w, char* out, int max)
{
    Sink sink(out, max);
    for (bool fits = true; *w && fits; ++w) {
        const auto c = static_cast<uint32_t>(*w);
        if (const char* entity = xml_entity(c))
            fits = sink.put(entity, static_cast<int>(std::strlen(entity)));
        else if (is_xml_char(c))
            fits = put_utf8(sink, c);
    }
    return sink.finish();
}

int cvt_utourl(const wchar_t* w, char* out, int max)
{
    Sink sink(out, max);
    while (*w && put_url(sink, static_cast<uint32_t>(*w)))
        ++w;
    return sink.finish();
}

int cvt_utol(const wchar_t* w, char* out, int max)
{
    Sink sink(out, max);
    while (*w && put_utf8(sink, static_cast<uint32_t>(*w)))
        ++w;
    return sink.finish();
}

void cvt_str2xml(const PDF_String& s, char* out, int size)
{
    wchar_t scratch[SCRATCH_CHARS];
    cvt_text_to_ucs(&s, scratch, SHORT_TEXT);
    cvt_utoxml(scratch, out, size - 1);
}

void cvt_str2url(const PDF_String& s, char* out, int size)
{
    wchar_t scratch[SCRATCH_CHARS];
    cvt_text_to_ucs(&s, scratch, SHORT_TEXT);
    cvt_utourl(scratch, out, size - 1);
}

void cvt_str2l(const PDF_String& s, char* out, int size)
{
    wchar_t scratch[SCRATCH_CHARS];
    cvt_text_to_ucs(&s, scratch, SCRATCH_CHARS - 1);
    cvt_utol(scratch, out, size - 1);
}

char* cvt_url_to_ascii(const char* url)
{
    size_t size = 1;
    for (const char* p = url; *p; ++p)
        size += is_wire_char(static_cast<unsigned char>(*p)) ? 1 : 3;
    auto* out = static_cast<char*>(VXAlloc(size));
    if (!out)
        return nullptr;
    char* at = out;
    for (; *url; ++url) {
        const auto c = static_cast<unsigned char>(*url);
        if (is_wire_char(c)) {
            *at++ = *url;
            continue;
        }
        *at++ = '%';
        *at++ = HEX[c >> 4];
        *at++ = HEX[c & 15];
    }
    *at = 0;
    return out;
}

int ansi_from_u32(char* out, unsigned v)
{
    char digits[10];
    int len = 0;
    do {
        digits[len++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v);
    for (int i = 0; i < len; ++i)
        out[i] = digits[len - 1 - i];
    out[len] = 0;
    return len;
}

void ansi_repc(char* s, int from, int to)
{
    for (; *s; ++s) {
        if (*s == static_cast<char>(from))
            *s = static_cast<char>(to);
    }
}
