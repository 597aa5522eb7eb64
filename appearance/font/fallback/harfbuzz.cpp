#include "appearance/font/fallback/harfbuzz.h"

#include <dlfcn.h>

namespace {

void* load_library(const char* name, std::string& problem)
{
    void* library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        problem =
            "The library " + std::string(name) + " can't be loaded, so no other font stands in for missing characters.";
    return library;
}

template <typename Function>
bool find_function(void* library, const char* name, Function& out, std::string& problem)
{
    out = reinterpret_cast<Function>(dlsym(library, name));
    if (!out)
        problem =
            "The HarfBuzz library has no " + std::string(name) + ", so no other font stands in for missing characters.";
    return out != nullptr;
}

}  // namespace

bool load_harfbuzz(HARFBUZZ& out, std::string& problem, const char* shaping, const char* subsets)
{
    void* library = load_library(shaping, problem);
    if (!library)
        return false;
#define HARFBUZZ_FIND(name)                                                                                            \
    if (!find_function(library, #name, out.name, problem))                                                             \
        return false;
    HARFBUZZ_SHAPING(HARFBUZZ_FIND)
    library = load_library(subsets, problem);
    if (!library)
        return false;
    HARFBUZZ_SUBSETS(HARFBUZZ_FIND)
#undef HARFBUZZ_FIND
    return true;
}
