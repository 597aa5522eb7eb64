#include "core/alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

namespace {
// Takes, grows, shrinks and gives back blocks of every small size and some larger ones; none may touch another's bytes.
void churn(unsigned seed)
{
    struct Block {
        unsigned char* bytes;
        size_t size;
        unsigned char fill;
    };
    std::vector<Block> blocks(200);
    for (size_t step = 0; step < 4000; ++step) {
        seed = seed * 1664525u + 1013904223u;
        const size_t size = (seed >> 8) % (step % 50 ? 300 : 70000);
        Block& block = blocks[(seed >> 4) % blocks.size()];
        const auto is_filled = [&block](unsigned char byte) { return byte == block.fill; };
        ASSERT_TRUE(std::all_of(block.bytes, block.bytes + block.size, is_filled));
        if (seed & 8) {
            VXFree(block.bytes);
            block = {static_cast<unsigned char*>(VXAlloc(size)), 0, block.fill};
        } else {
            block.bytes = static_cast<unsigned char*>(VXRealloc(block.bytes, size));
        }
        ASSERT_NE(block.bytes, nullptr);
        ASSERT_EQ(reinterpret_cast<uintptr_t>(block.bytes) % alignof(void*), 0u);
        ASSERT_TRUE(std::all_of(block.bytes, block.bytes + std::min(size, block.size), is_filled));
        block = {block.bytes, size, static_cast<unsigned char>(seed >> 24)};
        std::memset(block.bytes, block.fill, size);
    }
    for (const Block& block : blocks)
        VXFree(block.bytes);
}
}  // namespace

TEST(AllocTest, BlocksKeepTheirBytes)
{
    churn(1);
    EXPECT_EQ(vx_alloc_array<uint64_t>(SIZE_MAX / 4), nullptr);
}

#ifndef FORMWORK_ALLOC_HOOK  // the hook counts without locks

TEST(AllocTest, ThreadsMayFreeForEachOther)
{
    std::vector<void*> made(3000);
    for (unsigned round = 0; round < 8; round += 2) {
        std::thread maker([&] {
            for (size_t i = 0; i < made.size(); ++i)
                made[i] = std::memset(VXAlloc(i % 280), 7, i % 280);
            churn(round);
        });
        std::thread other([&] { churn(round + 1); });
        maker.join();
        for (void* block : made)
            VXFree(block);
        churn(round);
        other.join();
    }
}

#endif
