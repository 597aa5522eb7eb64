// What a push button does (ISO 32000-2, 12.6.4.8, 12.6.4.12 and 12.7.6).
#pragma once

#include <string>

// An action dictionary as a file spells it; empty for none.
struct PDF_BUTTON_ACTION {
    std::string dictionary;
};

// What read_action takes, for sentences.
inline constexpr const char* ACTION_WORDS =
    "submit:URL (as a web form; submit-fdf:, submit-xfdf: or submit-pdf:URL), reset, print, link:URL or none";

// Reads words of people. False for others, and for an address with characters that URLs don't have.
bool read_action(const std::string& words, PDF_BUTTON_ACTION& out);
