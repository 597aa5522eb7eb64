// Makes every allocation of an operation fail in turn.
#pragma once

#include <gtest/gtest.h>

#include "core/alloc.h"

#ifdef FORMWORK_ALLOC_HOOK

// Calls `run(arm)` again and again. `run` builds what it needs, calls arm(operation) once, checks the outcome and lets
// everything go. Allocation 1, 2, 3 ... of the operation fails until one run needs no more; arm returns whether one
// failed.
template <typename Run>
void each_failed_allocation(const Run& run)
{
    constexpr int64_t MOST = 100000;
    for (int64_t n = 0; n < MOST; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n + 1) + " fails");
        const int64_t live = vx_live_blocks();
        bool failed = false;
        const auto arm = [&](const auto& operation) {
            vx_fail_after(n);
            operation();
            failed = vx_has_failed();
            vx_fail_after(-1);
            return failed;
        };
        run(arm);
        ASSERT_EQ(vx_live_blocks(), live) << "leak";
        if (!failed) {
            ASSERT_GT(n, 0) << "the operation allocates nothing";
            return;
        }
        if (::testing::Test::HasFailure())
            return;
    }
    FAIL() << "the operation never succeeds";
}

#else

// Without the hook nothing fails: one run shows what the operation does.
template <typename Run>
void each_failed_allocation(const Run& run)
{
    run([](const auto& operation) {
        operation();
        return false;
    });
}

#endif
