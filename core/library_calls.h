// Libraries that do not tell when memory runs out.
#pragma once

#include <cerrno>

#include "core/alloc.h"

// Stands around calls of such a library: where one ended without memory, as "errno" tells, that counts as a failed
// allocation. What a call does after that may hide it.
class VXLibraryCalls {
public:
    VXLibraryCalls() { errno = 0; }
    ~VXLibraryCalls()
    {
        if (errno == ENOMEM)
            vx_note_failure();
    }
    VXLibraryCalls(const VXLibraryCalls&) = delete;
    VXLibraryCalls& operator=(const VXLibraryCalls&) = delete;
};
