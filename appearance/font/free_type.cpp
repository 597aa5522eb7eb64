#include "appearance/font/free_type.h"

#include <ft2build.h>

#include FT_MODULE_H
#include FT_SYSTEM_H

#include "core/alloc.h"

namespace {

void* allocate(FT_Memory /*memory*/, long size)
{
    return VXAlloc(static_cast<size_t>(size));
}

void release(FT_Memory /*memory*/, void* block)
{
    VXFree(block);
}

void* resize(FT_Memory /*memory*/, long /*old_size*/, long size, void* block)
{
    return VXRealloc(block, static_cast<size_t>(size));
}

}  // namespace

void FREE_TYPE_END::operator()(FT_LibraryRec_* library) const
{
    FT_Done_Library(library);
}

FREE_TYPE open_free_type()
{
    static FT_MemoryRec_ memory = {nullptr, allocate, release, resize};
    FT_Library library = nullptr;
    if (FT_New_Library(&memory, &library) != 0)
        return nullptr;
    FT_Add_Default_Modules(library);
    return FREE_TYPE(library);
}
