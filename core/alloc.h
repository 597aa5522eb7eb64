// The engine allocator: every string, name, byte buffer and plain array comes from here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

// Returns `size` bytes, aligned to 8, or null when memory runs out. Blocks may be freed by any thread. A size of 0
// gives a valid block that must be freed.
void* VXAlloc(size_t size);

// Grows or shrinks `block` to `size` bytes; a null block allocates. On failure returns null and leaves `block`
// valid. The caller owns the result.
void* VXRealloc(void* block, size_t size);

// Releases a block of VXAlloc or VXRealloc; null is accepted.
void VXFree(void* block);

// How many calls of VXAlloc and VXRealloc have failed in this thread.
uint64_t vx_failures();

// Counts as such a call: for whoever calls a library that ran out of memory in its own way.
void vx_note_failure();

// Tells whether an allocation has failed since it was made: what was built meanwhile may then lack a part.
class VXFailureCheck {
public:
    VXFailureCheck() : m_before(vx_failures()) {}
    bool failed() const { return vx_failures() != m_before; }

private:
    uint64_t m_before;
};

struct VXBlockDeleter {
    void operator()(void* block) const { VXFree(block); }
};

// Guard for a block inside a function body; never a member or a parameter.
template <typename T>
using VXBlock = std::unique_ptr<T, VXBlockDeleter>;

// Returns room for `count` plain records, or null when memory runs out or the size does not fit.
template <typename T>
T* vx_alloc_array(size_t count)
{
    if (count > SIZE_MAX / sizeof(T))
        return nullptr;
    return static_cast<T*>(VXAlloc(count * sizeof(T)));
}

// Base of the classes whose objects the engine makes: `new` takes them from here, too, and gives null when memory runs
// out, so that it never throws. One base for each class keeps it without size.
template <typename T>
struct VXNew {
    static void* operator new(size_t size) noexcept
    {
        static_assert(alignof(T) <= alignof(uint64_t));
        return VXAlloc(size);
    }
    static void* operator new(size_t /*size*/, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { VXFree(block); }
};

#ifdef FORMWORK_ALLOC_HOOK
// Test hook of debug builds. Lets the next `count` calls of VXAlloc and VXRealloc succeed and the one after fail,
// once; a negative count ends the hook.
void vx_fail_after(int64_t count);

// True once the armed failure has happened.
bool vx_has_failed();

// Number of blocks now allocated and not yet freed.
int64_t vx_live_blocks();
#endif
