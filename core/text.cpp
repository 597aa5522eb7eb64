#include "core/text.h"

#include <cstring>

#include "core/alloc.h"
#include "core/xml_token.h"

namespace {

// PDFDocEncoding (ISO 32000-2, Annex D.2) where it differs from Latin-1: 18-1F, 7F-9F and A0. Codes without a
// character decode as themselves, so that control characters survive.
constexpr uint16_t DOC_18[8] = {0x02D8, 0x02C7, 0x02C6, 0x02D9, 0x02DD, 0x02DB, 0x02DA, 0x02DC};
constexpr uint16_t DOC_80[33] = {
    0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x0192, 0x2044, 0x2039, 0x203A, 0x2212,
    0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019, 0x201A, 0x2122, 0xFB01, 0xFB02, 0x0141,
    0x0152, 0x0160, 0x0178, 0x017D, 0x0131, 0x0142, 0x0153, 0x0161, 0x017E, 0x009F, 0x20AC,
};

uint32_t from_doc_encoding(unsigned char c)
{
    if (c >= 0x18 && c <= 0x1F)
        return DOC_18[c - 0x18];
    if (c >= 0x80 && c <= 0xA0)
        return DOC_80[c - 0x80];
    return c;
}

// Collects decoded characters, leaving out language escapes (ISO 32000-2, 7.9.2.2): U+001B, a language and perhaps a
// country code, U+001B. An escape that doesn't end so is text.
class TextSink {
public:
    TextSink(wchar_t* out, int max) : m_out(out), m_max(max < 0 ? 0 : max) {}

    bool full() const { return m_len == m_max; }

    void put(uint32_t c)
    {
        if (m_held_len < 0) {
            if (c == ESCAPE)
                m_held_len = 0;
            else
                keep(c);
            return;
        }
        if (c == ESCAPE) {
            m_held_len = -1;
            return;
        }
        m_held[m_held_len++] = c;
        if (m_held_len == LONGEST_CODE)
            keep_held();
    }

    int finish()
    {
        keep_held();
        m_out[m_len] = 0;
        return m_len;
    }

private:
    static constexpr uint32_t ESCAPE = 0x1B;
    static constexpr int LONGEST_CODE = 8;

    void keep(uint32_t c)
    {
        if (!full())
            m_out[m_len++] = static_cast<wchar_t>(c);
    }

    void keep_held()
    {
        for (int i = 0; i < m_held_len; ++i)
            keep(m_held[i]);
        m_held_len = -1;
    }

    wchar_t* m_out;  // borrowed from the caller
    int m_max;
    int m_len = 0;
    uint32_t m_held[LONGEST_CODE] = {};  // what follows an escape that has not ended
    int m_held_len = -1;                 // -1 outside an escape
};

void decode_utf16be(const unsigned char* p, const unsigned char* end, TextSink& sink)
{
    while (end - p >= 2 && !sink.full()) {
        uint32_t c = static_cast<uint32_t>(p[0]) << 8 | p[1];
        p += 2;
        if (c >= 0xD800 && c < 0xDC00 && end - p >= 2) {
            const uint32_t low = static_cast<uint32_t>(p[0]) << 8 | p[1];
            if (low >= 0xDC00 && low < 0xE000) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                p += 2;
            }
        }
        sink.put(c);
    }
}

constexpr char HEX[] = "0123456789ABCDEF";
constexpr int SCRATCH_CHARS = 512;
constexpr int SHORT_TEXT = 127;

// Collects encoded bytes; a piece that does not fit whole ends the output.
class ByteSink {
public:
    ByteSink(char* out, int max) : m_out(out), m_max(max < 0 ? 0 : max) {}

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

bool put_utf8(ByteSink& sink, uint32_t c)
{
    char bytes[4];
    return sink.put(bytes, utf8_from_ucs(c, bytes));
}

bool put_url(ByteSink& sink, uint32_t c)
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

uint32_t ucs_from_utf8(const unsigned char*& p, const unsigned char* end)
{
    constexpr uint32_t REPLACEMENT = 0xFFFD;
    constexpr uint32_t SMALLEST[5] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned char first = *p++;
    if (first < 0x80)
        return first;
    const int size = first >= 0xF0 && first < 0xF8 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first >= 0xF8 || end - p < size - 1)
        return REPLACEMENT;
    uint32_t c = first & (0x7Fu >> size);
    for (int i = 0; i < size - 1; ++i) {
        if ((p[i] & 0xC0) != 0x80)
            return REPLACEMENT;
        c = c << 6 | (p[i] & 0x3F);
    }
    if (c < SMALLEST[size] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
        return REPLACEMENT;
    p += size - 1;
    return c;
}

int cvt_text_to_ucs(const PDF_String* s, wchar_t* out, int max)
{
    TextSink sink(out, max);
    if (!s || !s->buf || s->len <= 0)
        return sink.finish();
    const unsigned char* p = s->buf;
    const unsigned char* end = p + s->len;
    if (s->len >= 2 && p[0] == 0xFE && p[1] == 0xFF) {
        decode_utf16be(p + 2, end, sink);
    } else if (s->len >= 3 && p[0] == 0xEF && p[1] == 0xBB && p[2] == 0xBF) {
        for (p += 3; p < end && !sink.full();)
            sink.put(ucs_from_utf8(p, end));
    } else {
        while (p < end && !sink.full())
            sink.put(from_doc_encoding(*p++));
    }
    return sink.finish();
}

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
    ByteSink sink(out, max);
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
    ByteSink sink(out, max);
    while (*w && put_url(sink, static_cast<uint32_t>(*w)))
        ++w;
    return sink.finish();
}

int cvt_utol(const wchar_t* w, char* out, int max)
{
    ByteSink sink(out, max);
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
