#include "appearance/font/font_style.h"

#include <algorithm>
#include <initializer_list>
#include <string>

namespace {

constexpr uint32_t FLAG_FIXED_PITCH = 1u << 0;
constexpr uint32_t FLAG_SERIF = 1u << 1;
constexpr uint32_t FLAG_ITALIC = 1u << 6;
constexpr uint32_t FLAG_FORCE_BOLD = 1u << 18;

bool has_any(const std::string& name, std::initializer_list<const char*> words)
{
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return name.find(word) != std::string::npos; });
}

}  // namespace

FONT_STYLE font_style(std::string_view base_font, uint32_t flags)
{
    std::string name(base_font);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    FONT_STYLE style;
    style.mono = flags & FLAG_FIXED_PITCH || has_any(name, {"cour", "mono", "typewriter"});
    style.serif =
        flags & FLAG_SERIF || (has_any(name, {"times", "tiro", "serif", "roman"}) && !has_any(name, {"sans"}));
    style.bold = flags & FLAG_FORCE_BOLD || has_any(name, {"bold", "black", "heavy"});
    style.italic = flags & FLAG_ITALIC || has_any(name, {"italic", "oblique"});
    return style;
}
