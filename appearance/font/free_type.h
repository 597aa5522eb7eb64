// FreeType with memory of the engine's allocator, which counts what fails.
#pragma once

#include <memory>

struct FT_LibraryRec_;

struct FREE_TYPE_END {
    void operator()(FT_LibraryRec_* library) const;
};

// The library, and with it the faces that were opened.
using FREE_TYPE = std::unique_ptr<FT_LibraryRec_, FREE_TYPE_END>;

// Null when memory runs out.
FREE_TYPE open_free_type();
