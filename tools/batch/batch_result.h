// How a row of a batch went.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

enum class ROW_RESULT {
    WRITTEN,
    REFUSED,  // its values or its output name; the same again next time
    FAILED,   // the output could not be written; another time it may
    SKIPPED,  // its output is there
    COUNT,
};

struct BATCH_RESULT {
    size_t row = 0;
    ROW_RESULT result = ROW_RESULT::WRITTEN;
    std::string output;
    std::vector<std::string> refusals;  // sentences; why, for what failed
    std::string report;                 // lines of JSON
    bool stops = false;                 // nothing more can be stored

    // For the manifest.
    bool is_known = false;  // it says so already
    std::string mark;       // see BatchManifest::mark_of
    std::string sha256;     // of the output

    // For an archive: the bytes of the output, in two parts. The first is borrowed from the template.
    std::string_view head;
    std::string tail;

    void refuse(ROW_RESULT how, std::string sentence)
    {
        result = how;
        refusals.push_back(std::move(sentence));
    }
};
