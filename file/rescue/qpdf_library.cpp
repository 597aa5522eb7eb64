#include "file/rescue/qpdf_library.h"

#include <dlfcn.h>

namespace {

QPDF_LIBRARY load_library()
{
    QPDF_LIBRARY out;
    void* library = nullptr;
    for (const char* name : {"libqpdf.so.29", "libqpdf.so"}) {
        if (!library)
            library = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    }
    if (!library) {
        out.problem = "repairing it needs the library libqpdf.so.29, which can't be loaded";
        return out;
    }
#define QPDF_FIND(name)                                                                                                \
    out.name = reinterpret_cast<decltype(out.name)>(dlsym(library, #name));                                            \
    if (!out.name)                                                                                                     \
        out.problem = "repairing it needs another qpdf library: this one has no " #name;
    QPDF_FUNCTIONS(QPDF_FIND)
#undef QPDF_FIND
    return out;
}

}  // namespace

const QPDF_LIBRARY& qpdf_library()
{
    static const QPDF_LIBRARY LIBRARY = load_library();
    return LIBRARY;
}
