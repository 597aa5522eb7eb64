// Any bytes: open, walk, fill, save, open again.
#include <cstdio>
#include <cstdlib>

#include "fuzz/open_form_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t MOST_FIELDS = 64;
    if (const char* fault = open_form_fault({data, data + size}, MOST_FIELDS)) {
        std::fprintf(stderr, "%s\n", fault);
        std::abort();
    }
    return 0;
}
