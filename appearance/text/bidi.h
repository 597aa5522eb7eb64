// Directions inside a text (Unicode Standard Annex 9): scripts that run from right to left beside others.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

// The embedding level of each character of one paragraph: odd levels run from right to left. The paragraph's own direction
// is that of its first strong character and goes to `right_to_left`. Controls that show nothing have the level of what
// is before them, and white space at the end of a line that of the paragraph only where the paragraph ends. When memory
// runs out everything runs from left to right.
std::vector<uint8_t> bidi_levels(std::u32string_view text, bool& right_to_left);

// The character that shows `c` where text runs from right to left, as ")" for "("; `c` itself when there is none.
char32_t bidi_mirrored(char32_t c);
