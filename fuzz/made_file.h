// A PDF file around the objects that a fuzz target makes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A stream object; `entries` are those beside "Length".
inline std::string stream_text(std::string_view data, std::string_view entries = {})
{
    return "<<" + std::string(entries) + "/Length " + std::to_string(data.size()) + ">>\nstream\n" + std::string(data) +
           "\nendstream";
}

// The parts of an input, separated by lines of one semicolon: at least `least`, which may be empty, at most `most`.
inline std::vector<std::string> parts_of(std::string_view text, size_t least, size_t most)
{
    constexpr std::string_view MARK = "\n;\n";
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= text.size() && parts.size() < most;) {
        const size_t end = std::min(text.find(MARK, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end + MARK.size();
    }
    parts.resize(std::max(parts.size(), least));
    return parts;
}

// Object 1 is the catalog; `trailer` are entries beside "Size" and "Root".
inline std::vector<uint8_t> made_file(const std::vector<std::pair<int, std::string>>& objects,
                                      const std::string& trailer = "")
{
    std::string file = "%PDF-1.7\n";
    std::string table = "xref\n";
    int size = 0;
    for (const auto& [num, text] : objects) {
        std::string at = std::to_string(file.size());
        at.insert(0, 10 - at.size(), '0');
        table += std::to_string(num) + " 1\n" + at + " 00000 n \n";
        file += std::to_string(num) + " 0 obj\n" + text + "\nendobj\n";
        size = std::max(size, num + 1);
    }
    const std::string start = std::to_string(file.size());
    file += table + "trailer\n<</Size " + std::to_string(size) + "/Root 1 0 R" + trailer + ">>\nstartxref\n" + start +
            "\n%%EOF\n";
    return {file.begin(), file.end()};
}
