// The style of fonts, which decides what stands in for another one.
#pragma once

#include <cstdint>
#include <string_view>

// What a font should look like that stands in for another.
struct FONT_STYLE {
    bool serif = false;
    bool mono = false;
    bool bold = false;
    bool italic = false;
};

// The style of a font by its "BaseFont" name and the "Flags" of its descriptor (ISO 32000-2, table 121), 0 without one.
FONT_STYLE font_style(std::string_view base_font, uint32_t flags);
