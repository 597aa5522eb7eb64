#include "core/text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/alloc.h"

using namespace std::string_literals;

namespace {
PDF_String view_of(const std::string& bytes)
{
    return {static_cast<int32_t>(bytes.size()), reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()))};
}

// What `convert` writes for a limit, which it must not exceed and must report.
template <typename Char, typename Convert>
std::basic_string<Char> within(int max, const Convert& convert)
{
    constexpr Char GUARD = 0x7E;
    std::vector<Char> out(static_cast<size_t>(max) + 2, GUARD);
    const int written = convert(out.data(), max);
    EXPECT_LE(written, max);
    EXPECT_TRUE(out[static_cast<size_t>(written)] == 0 && out.back() == GUARD);
    return {out.data(), static_cast<size_t>(written)};
}

using Encoder = int (*)(const wchar_t*, char*, int);

std::string encode(Encoder encoder, const std::wstring& text, int max)
{
    return within<char>(max, [&](char* out, int limit) { return encoder(text.c_str(), out, limit); });
}
}  // namespace

TEST(TextTest, Decodes)
{
    const struct {
        const char* label;
        std::string bytes;
        int max;
        std::wstring expected;
    } cases[] = {
        {"Latin-1 part", "A\xE9\xFF~\n\xAD\xA1", 9, L"A\u00E9\u00FF~\n\u00AD\u00A1"},
        {"18 to 1F", "\x18\x19\x1A\x1B\x1C\x1D\x1E\x1F", 9, L"\u02D8\u02C7\u02C6\u02D9\u02DD\u02DB\u02DA\u02DC"},
        {"80 to 8F", "\x80\x81\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8D\x8E\x8F", 20, L"•†‡…—–ƒ⁄‹›−‰„“”‘"},
        {"90 to A0", "\x90\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9D\x9E\xA0", 20, L"’‚™ﬁﬂŁŒŠŸŽıłœšž€"},
        {"UTF-16, odd byte behind", "\xFE\xFF\0A\x04\x16\0"s, 9, L"AЖ"},
        {"pair at the limit", "\xFE\xFF\0A\xD8\x3D\xDE\x01\0B"s, 2, L"A\U0001F601"},
        {"lone high surrogate keeps its neighbour", "\xFE\xFF\xD8\x3D\0A"s, 9, L"\xD83D\x41"},
        {"language escape", "\xFE\xFF\0\x1B\x65n\0\x1B\0H\0\x1B\x64\x65\x43H\0\x1B\0i"s, 2, L"Hi"},
        {"UTF-8", "\xEF\xBB\xBF\x61é€\xF0\x9F\x98\x80", 9, L"aé€\U0001F600"},
        {"bad UTF-8", "\xEF\xBB\xBF\xC0\xAF\xED\xA0\x80x\xF4\x90\x80\x80\xE2\x82", 20,
         L"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFDx\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"no room", "abc", 0, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const PDF_String s = view_of(c.bytes);
        EXPECT_EQ(within<wchar_t>(c.max, [&](wchar_t* out, int max) { return cvt_text_to_ucs(&s, out, max); }),
                  c.expected);
    }
    EXPECT_EQ(within<wchar_t>(5, [](wchar_t* out, int max) { return cvt_text_to_ucs(nullptr, out, max); }), L"");
}

TEST(TextTest, EncodesForXmlUrlAndLocal)
{
    const struct {
        const char* label;
        std::wstring text;
        std::string xml, url, local;
    } cases[] = {
        {"markup, line ends", L"\t\r\n<a b='\"&\">", "\t\r\n&lt;a b=&apos;&quot;&amp;&quot;&gt;",
         "%09%0D%0A%3Ca+b%3D%27%22%26%22%3E", "\t\r\n<a b='\"&\">"},
        {"literals", L"Az09-._~[]#é€\U0001F600", "Az09-._~[]#é€\U0001F600", "Az09-._~[]#é€\U0001F600",
         "Az09-._~[]#é€\U0001F600"},
        {"delimiters", L"+/%=;?@\x7F", "+/%=;?@\x7F", "%2B%2F%25%3D%3B%3F%40%7F", "+/%=;?@\x7F"},
        {"forbidden in XML", L"a\x1\x1F\xFFFE\xFFFF\xD800z", "az", "a%01%1F\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBDz",
         "a\x1\x1F\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBDz"},
        {"beyond Unicode", L"\x110000", "", "\xEF\xBF\xBD", "\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::pair<Encoder, const std::string&> forms[] = {
            {cvt_utoxml, c.xml}, {cvt_utourl, c.url}, {cvt_utol, c.local}};
        for (const auto& [encoder, whole] : forms) {
            EXPECT_EQ(encode(encoder, c.text, 100), whole);
            // A smaller limit gives the pieces of the first characters that fit whole.
            for (int max = 0; max < static_cast<int>(whole.size()); ++max) {
                std::string fitting;
                for (size_t n = 1; n <= c.text.size(); ++n) {
                    const std::string longer = encode(encoder, c.text.substr(0, n), 100);
                    if (longer.size() > static_cast<size_t>(max))
                        break;
                    fitting = longer;
                }
                EXPECT_EQ(encode(encoder, c.text, max), fitting) << max;
            }
        }
    }
}

TEST(TextTest, UrlOnTheWireIsPlainAscii)
{
    const VXBlock<char> out(cvt_url_to_ascii("a[0]#=%5B+~&!\xC3\xA9\x7F \r\n\xFF"));
    EXPECT_STREQ(out.get(), "a%5B0%5D%23=%5B+~&!%C3%A9%7F%20%0D%0A%FF");
    EXPECT_STREQ(VXBlock<char>(cvt_url_to_ascii("")).get(), "");
}

TEST(TextTest, ShortTextRule)
{
    const std::string long_value(600, '&');
    const PDF_String s = view_of(long_value);
    char out[4096];
    const auto text = [&](auto convert, int size) {
        convert(s, out, size);
        return std::string(out);
    };
    EXPECT_EQ(text(cvt_str2xml, sizeof out).size(), 127u * 5);
    EXPECT_EQ(text(cvt_str2url, sizeof out).size(), 127u * 3);
    EXPECT_EQ(text(cvt_str2l, sizeof out).size(), 511u);
    // `size` counts the terminator.
    EXPECT_EQ(text(cvt_str2xml, 11) + "," + text(cvt_str2xml, 10) + "," + text(cvt_str2l, 1), "&amp;&amp;,&amp;,");
}
