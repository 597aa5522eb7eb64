#include "tests/support/new_hook.h"

#ifdef FORMWORK_ALLOC_HOOK

#include <cstdlib>
#include <new>

namespace {
thread_local bool t_armed = false;
thread_local int t_pauses = 0;
thread_local int64_t t_fail_after = -1;
thread_local int64_t t_calls = 0;

void* take(std::size_t size)
{
    if (t_armed && t_pauses == 0 && t_calls++ == t_fail_after) {
        const std::new_handler handler = std::get_new_handler();
        if (!handler)
            return nullptr;
        handler();
    }
    return std::malloc(size ? size : 1);
}
}  // namespace

// What a library loses when its `new` fails is its own.
extern "C" __attribute__((weak)) void __lsan_disable();
extern "C" __attribute__((weak)) void __lsan_enable();

void fail_new_after(int64_t count)
{
    if (__lsan_disable && t_armed != (count >= 0))
        t_armed ? __lsan_enable() : __lsan_disable();
    t_armed = count >= 0;
    t_fail_after = count;
    t_calls = t_armed ? 0 : t_calls;
}

int64_t new_calls()
{
    return t_calls;
}

NewHookPause::NewHookPause()
{
    ++t_pauses;
}

NewHookPause::~NewHookPause()
{
    --t_pauses;
}

void* operator new(std::size_t size)
{
    if (void* block = take(size))
        return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
try {
    return take(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

#endif
