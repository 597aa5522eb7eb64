#include "core/stream.h"

#include <numeric>

#include "tests/support/memory_document.h"

TEST(StreamTest, BufferLoad)
{
    constexpr int BIG = 0x1000000;
    const struct {
        size_t size;
        int data_len, estimate, max;
        size_t expected;
        std::vector<int> reads;
    } cases[] = {
        {1024, 1024, 0, BIG, 1024, {1024, 1024}},
        {1025, 1025, 0, BIG, 1025, {2048}},
        {3000, 1, 3000, BIG, 3000, {3072}},  // the estimate counts
        {150000, 1024, 0, BIG, 150000, {1024, 1024, 2048, 4096, 8192, 16384, 32768, 65536, 65536}},
        {10000, 1024, 0, 4096, 4096, {1024, 1024, 2048}},
        {10000, 1024, 0, 0, 2048, {1024, 1024}},
        {10, -5, 0, BIG, 10, {1024}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        std::string data(c.size, 0);
        std::iota(data.begin(), data.end(), c.size % 23);
        MemoryStream stream(data, c.data_len);
        int len = c.estimate;
        const VXBlock<unsigned char> loaded(stream.buffer_load(c.max, len));
        ASSERT_NE(loaded, nullptr);
        ASSERT_EQ(static_cast<size_t>(len), c.expected);
        EXPECT_TRUE(std::memcmp(loaded.get(), data.data(), c.expected) == 0 && loaded.get()[len] == 0);
        EXPECT_EQ(stream.reads, c.reads);
    }
    MemoryStream stream("x", INT32_MAX);
    int len = 0;
    EXPECT_EQ(stream.buffer_load(BIG, len), nullptr) << "an absurd length is no reason to allocate";
}
