// Masks: what a text has to look like, character by character.
#pragma once

#include <string>
#include <string_view>

// How much of a mask a text has to fill.
enum class MASK_PART { WHOLE, START };

// Whether `text` fits `mask`, in which 9 is a digit, A a letter, O a letter or digit, X any character and * any number of
// them; other characters stand for themselves.
bool fits_mask(std::string_view text, std::string_view mask, MASK_PART part);

// What has forms of its own.
enum class SPECIAL_FORM { ZIP, ZIP_PLUS_4, PHONE, SOCIAL_SECURITY };

// Whether `text` is such a number, its groups apart by a point, a hyphen, a blank or nothing.
bool fits_special(std::string_view text, SPECIAL_FORM form, MASK_PART part);

// The digits of `text` in the usual form, as far as they go.
std::string print_special(std::string_view text, SPECIAL_FORM form);
