// Makes the n-th `new` fail, of debug builds. A program that uses it allocates by malloc.
#pragma once

#include <cstdint>

#include "core/alloc.h"

#ifdef FORMWORK_ALLOC_HOOK

// Lets the next `count` calls of global new succeed and the one after throw, once; a negative count ends the hook.
void fail_new_after(int64_t count);

// How often global new was called since then.
int64_t new_calls();

// While one lives, nothing is counted and nothing fails: for what stands in for other layers in tests.
class NewHookPause {
public:
    NewHookPause();
    ~NewHookPause();
    NewHookPause(const NewHookPause&) = delete;
    NewHookPause& operator=(const NewHookPause&) = delete;
};

#endif
