#include "core/alloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

thread_local uint64_t t_failures = 0;

// Counts a failure; hands `block` through.
inline void* counted(void* block)
{
    if (!block)
        ++t_failures;
    return block;
}

}  // namespace

uint64_t vx_failures()
{
    return t_failures;
}

void vx_note_failure()
{
    ++t_failures;
}

#ifdef FORMWORK_ALLOC_HOOK

namespace {

std::atomic<int64_t> g_fail_after = -1;
std::atomic<bool> g_failed = false;
std::atomic<int64_t> g_live = 0;

bool must_fail()
{
    if (g_fail_after < 0)
        return false;
    if (g_fail_after-- > 0)
        return false;
    g_failed = true;
    return true;
}

}  // namespace

void vx_fail_after(int64_t count)
{
    g_fail_after = count;
    g_failed = false;
}

bool vx_has_failed()
{
    return g_failed;
}

int64_t vx_live_blocks()
{
    return g_live;
}

void* VXAlloc(size_t size)
{
    if (must_fail())
        return counted(nullptr);
    void* block = std::malloc(size ? size : 1);
    g_live += block != nullptr;
    return counted(block);
}

void* VXRealloc(void* block, size_t size)
{
    if (must_fail())
        return counted(nullptr);
    void* grown = std::realloc(block, size ? size : 1);
    g_live += grown != nullptr && block == nullptr;
    return counted(grown);
}

void VXFree(void* block)
{
    g_live -= block != nullptr;
    std::free(block);
}

#else

// Objects of a document are many small blocks of few sizes, taken and given back at a high rate. They are cut from
// slabs and kept in one free list per size and thread; larger blocks go to malloc. Every block is preceded by its
// size class.

namespace {

constexpr size_t CLASS_STEP = 16;
constexpr size_t CLASS_COUNT = 16;  // small blocks have up to 256 bytes, the header included
constexpr size_t SLAB_SIZE = size_t{1} << 16;
constexpr uint64_t LARGE = CLASS_COUNT;

struct Header {
    uint64_t size_class;  // LARGE for a block of malloc
};

struct FreeBlock {
    FreeBlock* next;
};

struct Lists {
    FreeBlock* first[CLASS_COUNT];
    FreeBlock* last[CLASS_COUNT];  // of a list that is not empty
    unsigned char* slab;           // what is left of the newest slab
    unsigned char* slab_end;
};

// What threads that ended have left over.
class Orphans {
public:
    void give(Lists& lists)
    {
        const std::lock_guard lock(m_mutex);
        for (size_t i = 0; i < CLASS_COUNT; ++i) {
            if (!lists.first[i])
                continue;
            lists.last[i]->next = m_lists.first[i];
            m_lists.last[i] = m_lists.first[i] ? m_lists.last[i] : lists.last[i];
            m_lists.first[i] = lists.first[i];
        }
    }

    void take(Lists& lists)
    {
        const std::lock_guard lock(m_mutex);
        for (size_t i = 0; i < CLASS_COUNT; ++i) {
            if (lists.first[i])
                continue;
            lists.first[i] = std::exchange(m_lists.first[i], nullptr);
            lists.last[i] = m_lists.last[i];
        }
    }

private:
    std::mutex m_mutex;
    Lists m_lists = {};
};

Orphans& orphans()
{
    static Orphans* const left = new Orphans;  // never destroyed: threads may end after static objects
    return *left;
}

constinit thread_local Lists t_lists = {};

// Takes over what is left when the thread first needs a slab, and leaves its own blocks behind when it ends.
struct ThreadEnd {
    ThreadEnd() { orphans().take(t_lists); }
    ~ThreadEnd() { orphans().give(t_lists); }
};

void* refill(size_t size_class)
{
    static thread_local const ThreadEnd end;
    static_cast<void>(end);
    const size_t size = (size_class + 1) * CLASS_STEP;
    Lists& lists = t_lists;
    if (static_cast<size_t>(lists.slab_end - lists.slab) < size) {
        auto* slab = static_cast<unsigned char*>(std::malloc(SLAB_SIZE));
        if (!slab)
            return counted(nullptr);
        lists.slab = slab;
        lists.slab_end = slab + SLAB_SIZE;
    }
    auto* header = reinterpret_cast<Header*>(lists.slab);
    lists.slab += size;
    header->size_class = size_class;
    return header + 1;
}

void* large_block(Header* before, size_t size)
{
    if (size > SIZE_MAX - sizeof(Header))
        return counted(nullptr);
    auto* header = static_cast<Header*>(std::realloc(before, size + sizeof(Header)));
    if (!header)
        return counted(nullptr);
    header->size_class = LARGE;
    return header + 1;
}

}  // namespace

void* VXAlloc(size_t size)
{
    const size_t size_class = (size + sizeof(Header) - 1) / CLASS_STEP;
    if (size > CLASS_COUNT * CLASS_STEP - sizeof(Header))
        return large_block(nullptr, size);
    FreeBlock*& first = t_lists.first[size_class];
    if (!first)
        return refill(size_class);
    FreeBlock* block = first;
    first = block->next;
    return block;
}

void* VXRealloc(void* block, size_t size)
{
    if (!block)
        return VXAlloc(size);
    Header* header = static_cast<Header*>(block) - 1;
    if (header->size_class == LARGE)
        return large_block(header, size);
    const size_t room = (header->size_class + 1) * CLASS_STEP - sizeof(Header);
    if (size <= room)
        return block;
    void* grown = VXAlloc(size);
    if (!grown)
        return nullptr;
    std::memcpy(grown, block, room);
    VXFree(block);
    return grown;
}

void VXFree(void* block)
{
    if (!block)
        return;
    Header* header = static_cast<Header*>(block) - 1;
    if (header->size_class == LARGE) {
        std::free(header);
        return;
    }
    auto* spare = static_cast<FreeBlock*>(block);
    Lists& lists = t_lists;
    FreeBlock*& first = lists.first[header->size_class];
    if (!first)
        lists.last[header->size_class] = spare;
    spare->next = first;
    first = spare;
}

#endif
