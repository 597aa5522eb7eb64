// Full names with gaps.
#pragma once

#include <string_view>

// Whether `pattern` fits the whole of `name`: a '*' stands for any characters or none, all else for itself.
inline bool fits_pattern(std::string_view name, std::string_view pattern)
{
    size_t at = 0;
    size_t star = std::string_view::npos;  // the last '*' passed
    size_t after = 0;                      // where what follows it was tried
    for (size_t i = 0; at < name.size();) {
        if (i < pattern.size() && pattern[i] == '*') {
            star = i++;
            after = at;
        } else if (i < pattern.size() && pattern[i] == name[at]) {
            ++i;
            ++at;
        } else if (star != std::string_view::npos) {
            i = star + 1;
            at = ++after;
        } else {
            return false;
        }
        if (at == name.size())
            return pattern.find_first_not_of('*', i) == std::string_view::npos;
    }
    return pattern.find_first_not_of('*') == std::string_view::npos;
}
