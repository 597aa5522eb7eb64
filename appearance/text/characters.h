// What a character is to a line of text: simple classes after UAX 14 and UAX 29, without dictionaries.
#pragma once

#include <cstddef>
#include <string_view>

// Breaks a line wherever it stands: line feed, carriage return, line and paragraph separator and the like.
bool is_line_end(char32_t c);

// A space that a line may end at.
bool is_break_space(char32_t c);

// Stands in no font and is never drawn: controls, marks of direction, byte order marks, surrogates.
bool is_never_drawn(char32_t c);

// Seen by shaping only, and invisible where a font has no use for it: joiners and variation selectors.
bool is_shaping_hint(char32_t c);

// Belongs to the character before it: combining marks, joiners, variation selectors, skin tones.
bool joins_previous(char32_t c);

// Whether the character asks for the bidirectional algorithm.
bool is_right_to_left(char32_t c);

// Whether a line may begin at text[at]. `at` is not the first character, and text[at] does not join the one before.
bool may_begin_line(std::u32string_view text, size_t at);
