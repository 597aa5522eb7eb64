#include "file/object_stream.h"

#include "tests/support/pdf_builder.h"

namespace {
// A file whose object stream 7 is written as `entries` and `data`; objects 4 and 5 are its objects `index_4`, `index_5`.
std::string with_stream(const std::string& entries, const std::string& data, uint32_t index_4 = 0, uint32_t index_5 = 1)
{
    PdfBuilder file;
    file.object(1, "<</Type/Catalog>>").stream(7, "/Type/ObjStm" + entries, data);
    file.entry(4, PDF_XREF_IN_STREAM, 7, index_4).entry(5, PDF_XREF_IN_STREAM, 7, index_5);
    return file.xref_stream(9).text;
}

std::unique_ptr<CPDFObjectStream> stream_of(size_t size)
{
    CPDFBytes bytes;
    if (bytes.room(size))
        bytes.added(size);
    return std::make_unique<CPDFObjectStream>(std::move(bytes), 0, 0);
}
}  // namespace

TEST(CPDFObjectStreamTest, FindsObjectsByNumber)
{
    const struct {
        const char* label;
        std::string text;
        const char *object_4, *object_5;
    } cases[] = {
        {"plain", with_stream("/N 2/First 8", "4 0 5 7 (four) [5]"), "(four)", "[5]"},
        {"indices far outside", with_stream("/N 2/First 8", "4 0 5 7 (four) [5]", 2, 60000), "(four)", "[5]"},
        {"offsets descend", with_stream("/N 2/First 8", "4 4 5 0 [5] (four)"), "(four)", "[5]"},
        {"ends at the next object", with_stream("/N 2/First 8", "4 0 5 2 [ (five)"), "[]", "(five)"},
        {"more stated than there", with_stream("/N 2000000000/First 8", "4 0 5 7 (four) [5]"), "(four)", "[5]"},
        {"negative first", with_stream("/N 2/First -8", "4 8 5 15 (four) [5]"), "(four)", "[5]"},
        {"first outside", with_stream("/N 2/First 2000000000", "4 0 5 7 (four) [5]"), "null", "null"},
        {"offset outside", with_stream("/N 2/First 17", "4 4294967295 5 1 [5]"), "null", "5"},
        {"no filter known", with_stream("/N 2/First 8/Filter/DCTDecode", "4 0 5 7 (four) [5]"), "null", "null"},
        {"its count lies in it", with_stream("/N 5 0 R/First 8", "4 0 5 7 (four) 2"), "null", "null"},
        {"its length lies in it", with_stream("/N 2/First 8/Length 5 0 R", "4 0 5 7 (four) 18"), "(four)", "18"},
        {"a stream is none inside", with_stream("/N 2/First 8", "4 0 5 2 <<>>stream"), "<< >>", "null"},
    };
    for (const auto& c : cases) {
        FileAtWork file(c.text);
        EXPECT_EQ(file.show(4) + file.show(5), std::string(c.object_4) + c.object_5) << c.label;
    }
}

TEST(CPDFObjectStreamTest, StreamsOfDifferentSectionsDoNotMix)
{
    PdfBuilder builder;
    builder.object(1, "<</Type/Catalog>>").object_stream(7, {{4, "(old)"}, {5, "(five)"}}).xref_stream(9);
    builder.object_stream(8, {{6, "(six)"}, {4, "(new)"}}, "/Extends 7 0 R").xref_stream(10);
    FileAtWork file(builder.text);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(file.show(4) + file.show(5) + file.show(6), "(new)(five)(six)");
    }
}

TEST(CPDFObjectStreamTest, TheCacheDropsWhatWasUsedLongestAgo)
{
    constexpr size_t THIRD = size_t{1} << 20;
    CPDFObjectStreamCache cache(3 * THIRD + 1000);
    for (const uint32_t num : {1, 2, 3})
        EXPECT_TRUE(cache.add(num, stream_of(THIRD)));
    EXPECT_TRUE(cache.find(1));
    cache.add(4, stream_of(THIRD));
    EXPECT_FALSE(cache.find(2));
    EXPECT_TRUE(cache.find(1) && cache.find(3) && cache.find(4));
    EXPECT_TRUE(cache.add(5, stream_of(4 * THIRD)));
    EXPECT_FALSE(cache.find(1) || cache.find(3) || cache.find(4));
    EXPECT_TRUE(cache.find(5));
}
