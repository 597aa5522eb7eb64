#include "core/stream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/alloc.h"
#include "tests/support/memory_document.h"

namespace {

std::string pattern(size_t size)
{
    std::string data(size, 0);
    for (size_t i = 0; i < size; ++i)
        data[i] = static_cast<char>('a' + i % 23);
    return data;
}

}  // namespace

TEST(StreamTest, BufferLoad)
{
    constexpr int BIG = 0x1000000;
    const struct {
        const char* label;
        size_t size;
        int32_t data_len;
        int estimate;
        int max;
        size_t expected;
        std::vector<int> reads;  // empty: not looked at
    } cases[] = {
        {"empty", 0, 0, 0, BIG, 0, {}},
        {"one byte", 1, 1, 0, BIG, 1, {1024}},
        {"below a step", 1023, 1023, 0, BIG, 1023, {1024}},
        {"exactly a step", 1024, 1024, 0, BIG, 1024, {1024, 1024}},
        {"above a step", 1025, 1025, 0, BIG, 1025, {2048}},
        {"estimate wins", 3000, 1, 3000, BIG, 3000, {3072}},
        {"no estimate", 3072, 0, 0, BIG, 3072, {}},
        {"steps double up to 65536",
         300000,
         1024,
         0,
         BIG,
         300000,
         {1024, 1024, 2048, 4096, 8192, 16384, 32768, 65536, 65536, 65536, 65536}},
        {"prefix at max", 10000, 1024, 0, 2048, 2048, {1024, 1024}},
        {"max met exactly", 10000, 1024, 0, 4096, 4096, {1024, 1024, 2048}},
        {"no room at all", 10000, 1024, 0, 0, 2048, {1024, 1024}},
        {"negative length", 10, -5, 0, BIG, 10, {}},
        {"big", 5000000, 0, 0, BIG, 5000000, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string data = pattern(c.size);
        MemoryStream stream(data, c.data_len);
        int len = c.estimate;
        const VXBlock<unsigned char> loaded(stream.buffer_load(c.max, len));
        ASSERT_NE(loaded, nullptr);
        ASSERT_EQ(static_cast<size_t>(len), c.expected);
        EXPECT_EQ(std::memcmp(loaded.get(), data.data(), c.expected), 0);
        EXPECT_EQ(loaded.get()[len], 0);
        if (!c.reads.empty()) {
            EXPECT_EQ(stream.reads, c.reads);
        }
    }
    MemoryStream stream("x", INT32_MAX);
    int len = 0;
    EXPECT_EQ(stream.buffer_load(BIG, len), nullptr) << "an absurd length is no reason to allocate";
}
