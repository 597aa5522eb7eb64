// CMaps: what character codes mean, as "ToUnicode" and the "Encoding" of composite fonts say it (ISO 32000-2, 9.7.5 and 9.10.3).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

struct CMAP_ENTRY {
    uint32_t code;
    uint32_t value;  // a character or a CID
};

struct FONT_CMAP {
    std::vector<CMAP_ENTRY> characters;  // where a code shows exactly one, in the order of the file
    std::vector<CMAP_ENTRY> cids;        // the same
    int code_bytes = 0;                  // bytes of every code; 0 when codes differ in length or none is told
    bool complete = true;                // false when it builds on another CMap, or is written from top to bottom
};

// Reads a CMap leniently: what is malformed is left out, and what exceeds the limits too.
FONT_CMAP read_cmap(std::string_view bytes);
