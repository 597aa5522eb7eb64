// What a process that runs scripts gives up for good.
#pragma once

#include <cstddef>
#include <sys/types.h>

// To be called in a child right after the fork. Keeps the descriptor `pipe`, as number 0, and no other; no files,
// processes, signal handlers or core dumps; `memory` bytes more than there is; no system calls but those of computing, where
// the kernel can tell. The child ends with `parent`. False when that can't be had.
bool confine(int pipe, size_t memory, pid_t parent);
