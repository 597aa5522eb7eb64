// Copies between files that the system makes itself.
#pragma once

#include <cstddef>

// Copies up to `size` bytes from the beginning of `from` to where `to` stands, and tells how many it copied: 0 where the system
// can't do it between these two files, or at all.
size_t system_copy(int from, int to, size_t size);
