#include "file/filter/filters.h"

#include <cstdlib>

#include "file/filter/compress.h"
#include "tests/support/alloc_walk.h"
#include "tests/support/memory_document.h"

using namespace std::string_literals;

namespace {
const std::string HELLO = "Hello World!";
const std::string HELLO85 = "87cURD]i,\"Ebo80";

struct Case {
    std::string label, dict, data, expected;
};

const uint8_t* bytes_of(const std::string& text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

std::string text_of(const CPDFBytes& bytes)
{
    return bytes.size() ? std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()) : std::string();
}

// Decodes `data` under the stream dictionary written as `dict`; "refused" when that fails.
std::string decode(const std::string& dict, const std::string& data, CPDFXRefTable* xref = nullptr)
{
    CPDFObj obj;
    parse_object(dict, obj);
    // A copy of its own lets the sanitizer see a read behind the end.
    const std::vector<uint8_t> exact(data.begin(), data.end());
    CPDFBytes out;
    EXPECT_TRUE(out.append("old", 3));
    if (decode_stream(xref, *obj.dictionary(), exact.data(), data.size(), out))
        return text_of(out);
    EXPECT_EQ(out.size(), 0u);
    return "refused";
}

std::string deflate_of(const std::string& text)
{
    size_t size = 0;
    const VXBlock<unsigned char> packed(flate_compress(text.data(), text.size(), size));
    return std::string(reinterpret_cast<const char*>(packed.get()), size);
}

std::string random_bytes(size_t size, uint32_t seed)
{
    std::string out;
    for (; out.size() < size; seed = seed * 1664525 + 1013904223)
        out += static_cast<char>(seed >> 24);
    return out;
}

// The codes of LZW data. Each one makes an entry, and the code length grows once there is one of number 2^width -
// `early`.
std::string lzw_of(const std::vector<unsigned>& codes, unsigned early)
{
    std::string out;
    uint32_t bits = 0;
    unsigned count = 0;
    unsigned width = 9;
    unsigned last_entry = 257;
    for (const unsigned code : codes) {
        bits = bits << width | code;
        for (count += width; count >= 8; count -= 8)
            out += static_cast<char>(bits >> (count - 8));
        last_entry = code == 256 ? 257 : std::min(last_entry + 1, 4095u);
        if (code == 256)
            width = 9;
        else if (last_entry + early == 1u << width && width < 12)
            ++width;
    }
    return out + static_cast<char>(bits << (8 - count));
}

std::vector<unsigned> codes_of(const std::string& text)
{
    return {bytes_of(text), bytes_of(text) + text.size()};
}

struct Picture {
    size_t colors, bits, columns, rows;

    size_t row() const { return (colors * bits * columns + 7) / 8; }
    size_t pixel() const { return (colors * bits + 7) / 8; }
};

std::string predicted(const std::string& predictor, const Picture& picture)
{
    return "<</Filter/Fl/DecodeParms<</Predictor " + predictor + "/Colors " + std::to_string(picture.colors) +
           "/BitsPerComponent " + std::to_string(picture.bits) + "/Columns " + std::to_string(picture.columns) + ">>>>";
}

// PNG prediction as the PNG standard writes it down; row r is of kind kinds[r % kinds.size()].
std::string png_of(const std::string& raw, const Picture& picture, const std::string& kinds)
{
    std::string out;
    const size_t row = picture.row();
    for (size_t i = 0; i < raw.size(); ++i) {
        const size_t x = i % row;
        const char kind = kinds[i / row % kinds.size()];
        if (x == 0)
            out += static_cast<char>(kind - '0');
        const bool has_left = x >= picture.pixel();
        const int a = has_left ? static_cast<uint8_t>(raw[i - picture.pixel()]) : 0;
        const int b = i >= row ? static_cast<uint8_t>(raw[i - row]) : 0;
        const int c = has_left && i >= row ? static_cast<uint8_t>(raw[i - row - picture.pixel()]) : 0;
        const int pa = std::abs(b - c), pb = std::abs(a - c), pc = std::abs(a + b - c - c);
        const int guesses[] = {0, a, b, (a + b) / 2, pa <= pb && pa <= pc ? a : pb <= pc ? b : c};
        out += static_cast<char>(raw[i] - guesses[kind - '0']);
    }
    return out;
}
}  // namespace

TEST(FiltersTest, KnownData)
{
    const std::string packed = deflate_of(HELLO);
    const std::string raw = packed.substr(2, packed.size() - 6);
    std::string crypts;
    for (int i = 1; i < LIMIT_FILTERS; ++i)
        crypts += "/Crypt";
    const Case cases[] = {
        {"no filter", "<<>>", HELLO, HELLO},
        {"no bytes to inflate", "<</Filter/FlateDecode>>", "", ""},
        {"hex: space, both cases, odd digit", "<</Filter/ASCIIHexDecode>>", "4a 4B\r\n\t4>99", "JK@"},
        {"85: start mark, space anywhere", "<</Filter/A85>>", " <~87cU\nRD]i ,\"Ebo80~\n>", HELLO},
        {"85: zeros, last group of two", "<</Filter/A85>>", HELLO85 + "z5l~>", HELLO + "\0\0\0\0A"s},
        {"85: last group of one says nothing", "<</Filter/A85>>", HELLO85 + "5~>", HELLO},
        {"85: largest group", "<</Filter/A85>>", "s8W-!~>", "\xFF\xFF\xFF\xFF"},
        {"85: group above 2^32", "<</Filter/A85>>", HELLO85 + "s8W-\"87cUR~>", HELLO},
        {"85: z inside a group", "<</Filter/A85>>", HELLO85 + "87z87cUR", HELLO + "H"},
        {"lzw: the standard's example", "<</Filter/LZWDecode>>", "\x80\x0B\x60\x50\x22\x0C\x0C\x85\x01", "-----A---B"},
        {"lzw: code without an entry", "<</Filter/LZW>>", "\x80\x0B\x7F\xFF", "-"},
        {"run length", "<</Filter/RunLengthDecode>>", "\2abc\377x\201y\200zz", "abcxx" + std::string(128, 'y')},
        {"run length: no end mark", "<</Filter/RL>>", "\0a\376b"s, "abbb"},
        {"flate: wrong checksum", "<</Filter/FlateDecode>>", packed.substr(0, packed.size() - 1) + "?", HELLO},
        {"flate: no checksum, bytes behind", "<</Filter/Fl>>", packed.substr(0, 2) + raw + "\nendstream", HELLO},
        {"flate: no header", "<</Filter/Fl>>", raw, HELLO},
        {"flate: empty lines before", "<</Filter/Fl>>", "\r\n\n" + packed, HELLO},
        {"two filters, null parameters", "<</Filter[/AHx/A85]/DecodeParms[null null]>>", "3837635552", "Hell"},
        {"null filter has its parameters", "<</Filter[null/Fl/AHx]/DecodeParms[null<</Predictor 12/Columns 2>>]>>",
         deflate_of("\00241\002\1\1"), "AR"},
        {"parameters in an array, filter alone", "<</Filter/Fl/DecodeParms[<</Predictor 2/Columns 3>>]>>",
         deflate_of("a\1\1b\1\1"), "abcbcd"},
        {"parameters alone, filters in an array", "<</Filter[/AHx/LZW]/DecodeParms<</Predictor 2/Columns 3>>>>",
         "801840201808", "abc"},
        {"identity encryption", "<</Filter[/Crypt/A85]/DecodeParms[<</Name/Identity>>]>>", HELLO85, HELLO},
        {"other encryption", "<</Filter/Crypt/DecodeParms<</Name/StdCF>>>>", HELLO, HELLO},
        {"image codec behind a known filter", "<</Filter[/A85/DCTDecode]>>", HELLO85, "refused"},
        {"reference without a document", "<</Filter 3 0 R>>", HELLO, "refused"},
        {"as many filters as allowed", "<</Filter[" + crypts + "/A85]>>", HELLO85, HELLO},
        {"one filter too many", "<</Filter[" + crypts + "/Crypt/A85]>>", HELLO85, "refused"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(decode(c.dict, c.data), c.expected) << c.label;
}

TEST(FiltersTest, ReferencesAreFollowed)
{
    MemoryDocument doc("/FlateDecode; /Predictor 2 /Columns 3 0 R; 3");
    const std::string data = deflate_of("a\1\1b\1\1");
    EXPECT_EQ(decode("<</Filter 1 0 R/DecodeParms 2 0 R>>", data, &doc.xref), "abcbcd");
    EXPECT_EQ(decode("<</Filter[1 0 R]/DecodeParms[2 0 R]>>", data, &doc.xref), "abcbcd");
}

// What is left of cut data decodes to the start of the whole; the last byte may be a guess where bytes share a group.
TEST(FiltersTest, CutDataGivesTheStart)
{
    const std::string text = "one two two three three three " + random_bytes(60, 1) + std::string(300, '=');
    std::string hex;
    for (const char c : text)
        hex += {"0123456789ABCDEF"[static_cast<uint8_t>(c) >> 4], "0123456789ABCDEF"[c & 15]};
    const Case cases[] = {
        {"flate", "<</Filter/Fl>>", deflate_of(text), text},
        {"flate, no header", "<</Filter/Fl>>", deflate_of(text).substr(2), text},
        {"flate and png", "<</Filter/Fl/DecodeParms<</Predictor 15/Columns 13>>>>",
         deflate_of(png_of(text, {1, 8, 13, 30}, "40123")), text},
        {"lzw", "<</Filter/LZW>>", lzw_of(codes_of(text), 1), text},
        {"hex", "<</Filter/AHx>>", hex, text},
        {"85", "<</Filter/A85>>", HELLO85 + "z" + HELLO85, HELLO + "\0\0\0\0"s + HELLO},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        const size_t guessed = c.label == "hex" || c.label == "85";
        for (size_t size = 0; size <= c.data.size(); ++size) {
            const std::string part = decode(c.dict, c.data.substr(0, size));
            const size_t sure =
                size == c.data.size() ? c.expected.size() : part.size() - std::min(part.size(), guessed);
            EXPECT_LE(part.size(), c.expected.size());
            EXPECT_EQ(part.substr(0, sure), c.expected.substr(0, sure)) << size;
            EXPECT_TRUE(size < c.data.size() / 2 || !part.empty()) << size;
        }
    }
}

TEST(FiltersTest, LzwCodeLengthsAndFullTable)
{
    const std::string text = random_bytes(4500, 7);
    std::vector<unsigned> codes = codes_of(text);
    for (const unsigned code : {258u, 511u, 4095u, 256u, 65u, 258u, 259u, 257u, 66u})
        codes.push_back(code);
    const std::string expected = text + text.substr(0, 2) + text.substr(253, 2) + text.substr(3837, 2) + "AAAAAA";
    EXPECT_EQ(decode("<</Filter/LZW>>", lzw_of(codes, 1)), expected);
    EXPECT_EQ(decode("<</Filter/LZW/DecodeParms<</EarlyChange 0>>>>", lzw_of(codes, 0)), expected);
}

TEST(FiltersTest, PngPredictorsAgainstTheFormula)
{
    const Picture pictures[] = {{1, 8, 1, 40},  {1, 8, 5, 300}, {1, 8, 8, 300}, {1, 8, 9, 40},
                                {3, 8, 50, 30}, {4, 16, 7, 9},  {1, 1, 13, 20}, {5, 2, 3, 20}};
    for (const Picture& picture : pictures) {
        const std::string raw = random_bytes(picture.row() * picture.rows, 3);
        for (const char* kinds : {"0", "1", "2", "3", "4", "22222222222243210"}) {
            SCOPED_TRACE(predicted("15", picture) + " rows " + kinds);
            const std::string coded = png_of(raw, picture, kinds);
            EXPECT_EQ(decode(predicted("10", picture), deflate_of(coded)), raw);
            for (size_t cut = 1; cut < picture.row() + 2; ++cut) {
                const std::string part = deflate_of(coded.substr(0, coded.size() - cut));
                EXPECT_EQ(decode(predicted("15", picture), part),
                          raw.substr(0, raw.size() - std::min(cut, picture.row())))
                    << cut;
            }
        }
    }
}

TEST(FiltersTest, TiffPredictor)
{
    const struct {
        Picture picture;
        std::string coded, expected;
    } cases[] = {
        {{3, 8, 2, 2}, "\1\2\3\1\1\377\5\5\5\1\1\1", "\1\2\3\2\3\2\5\5\5\6\6\6"},
        {{1, 16, 3, 1}, "\0\xFF\0\1\xFF\0\0\1"s, "\0\xFF\1\0\0\0\0\1"s},
        {{2, 16, 2, 1}, "\0\1\0\2\0\3\0\xFF\0\1\0\2\0"s, "\0\1\0\2\0\4\1\1\0\1\0\2\0"s},
        {{1, 1, 8, 2}, "\xB4\xB4", "\xD8\xD8"},
        {{3, 1, 5, 1}, "\x88\xF1", "\x9B\x81"},
        {{3, 2, 3, 2}, "\x6D\x5C\x40\x6D\x5C", "\x6E\xC7\x40\x6E\xC7"},
        {{1, 4, 3, 2}, "\x1F\x23\x11\x10", "\x10\x23\x12\x30"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(decode(predicted("2", c.picture), deflate_of(c.coded)), c.expected) << predicted("2", c.picture);
}

// Sizes that overflow, or that ask for far more than there is: the data is one incomplete row.
TEST(FiltersTest, HostilePredictorSizes)
{
    const std::string data = deflate_of("\4" + HELLO);
    for (const std::string columns : {"1", "1073741824", "2147483647"}) {
        for (const char* bits : {"1", "8", "16"}) {
            const std::string parms = "/Colors 1073741824/Columns " + columns + "/BitsPerComponent " + bits;
            SCOPED_TRACE(parms);
            EXPECT_EQ(decode("<</Filter/Fl/DecodeParms<</Predictor 12" + parms + ">>>>", data), HELLO);
            EXPECT_EQ(decode("<</Filter/Fl/DecodeParms<</Predictor 2" + parms + ">>>>", data), "\4" + HELLO);
        }
    }
    EXPECT_EQ(
        decode("<</Filter/Fl/DecodeParms<</Predictor 2/Colors 0/Columns 3/BitsPerComponent 7>>>>", deflate_of("a\1\1")),
        "abc");
}

TEST(FiltersTest, BombsStopAtTheLimit)
{
    const std::string zeros(2 << 20, '\0');
    std::string runs;
    while (runs.size() < 1 << 17)
        runs += "\x81\0"s;
    for (const auto& [dict, data] :
         {std::pair{"<</Filter[/Fl/Fl]>>", deflate_of(deflate_of(zeros))}, {"<</Filter[/Fl/RL]>>", deflate_of(runs)}})
        EXPECT_EQ(decode(dict, data).size(), data.size() * LIMIT_DECODE_RATIO + LIMIT_DECODE_SLACK) << dict;
}

TEST(FiltersTest, ReaderGivesAllBytesAndStartsAgain)
{
    CPDFBytes bytes;
    ASSERT_TRUE(bytes.append(HELLO.data(), HELLO.size()));
    const std::unique_ptr<CPDFStream> stream(make_decoded_stream(std::move(bytes)));
    char part[20] = {};
    EXPECT_TRUE(stream->m_data_len == 12 && stream->read_data(part, 5) == 5 && !stream->at_end());
    EXPECT_TRUE(stream->read_data(part + 5, 15) == 7 && stream->at_end() && stream->read_data(part, 5) == 0);
    EXPECT_EQ(part, HELLO);
    stream->rewind();
    EXPECT_EQ(stream->read_data(part, 20), 12);
    EXPECT_EQ(part, HELLO);
}

TEST(FiltersTest, EveryFailedAllocation)
{
    std::string runs;
    for (const char c : random_bytes(200, 5))
        runs += std::string("\x81") + c;
    const std::string packed = deflate_of(deflate_of(lzw_of(codes_of(runs), 1)));
    const std::string cut = packed.substr(0, packed.size() - 9);
    CPDFObj obj;
    parse_object("<</Filter[/Fl/Fl/LZW/RL]>>", obj);
    const std::string expected = decode("<</Filter[/Fl/Fl/LZW/RL]>>", cut);
    ASSERT_GT(expected.size(), 10000u);
    each_failed_allocation([&](const auto& arm) {
        CPDFBytes out;
        bool done = false;
        const bool failed =
            arm([&] { done = decode_stream(nullptr, *obj.dictionary(), bytes_of(cut), cut.size(), out); });
        EXPECT_TRUE(done || failed);
        EXPECT_EQ(text_of(out), done ? expected : "");
    });
    each_failed_allocation([&](const auto& arm) {
        size_t size = 1;
        VXBlock<unsigned char> block;
        const bool failed = arm([&] { block.reset(flate_compress(cut.data(), cut.size(), size)); });
        EXPECT_EQ(block == nullptr, size == 0);
        EXPECT_TRUE(block || failed);
    });
}
