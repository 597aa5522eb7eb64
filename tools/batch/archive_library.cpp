#include "tools/batch/archive_library.h"

#include <dlfcn.h>

namespace {

ARCHIVE_LIBRARY load_library()
{
    ARCHIVE_LIBRARY out;
    void* library = nullptr;
    for (const char* name : {"libarchive.so.13", "libarchive.so"}) {
        if (!library)
            library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    }
    if (!library) {
        out.problem = "it needs the library libarchive.so.13, which can't be loaded";
        return out;
    }
#define ARCHIVE_FIND(name)                                                                                             \
    out.name = reinterpret_cast<decltype(out.name)>(dlsym(library, #name));                                            \
    if (!out.name)                                                                                                     \
        out.problem = "it needs another libarchive: this one has no " #name;
    ARCHIVE_FUNCTIONS(ARCHIVE_FIND)
#undef ARCHIVE_FIND
    return out;
}

}  // namespace

const ARCHIVE_LIBRARY& archive_library()
{
    static const ARCHIVE_LIBRARY LIBRARY = load_library();
    return LIBRARY;
}
