// Updates apart from the file that they belong to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "file/status.h"

// What the first line of an update says of its template: formwork-update 1 SIZE SHA256 NAME. Behind the line stand the bytes
// that follow the template's in the filled file.
struct TEMPLATE_MARK {
    std::string name;  // for people
    uint64_t size = 0;
    std::string sha256;

    // Of the file at `path`, which has these bytes.
    static TEMPLATE_MARK of(const std::string& path, std::string_view bytes);

    // The line, with its end.
    std::string line() const;

    // Reads the line, and takes it off `file`. Fails for what is no update.
    CPDFStatus read(std::string_view& file);

    // Fails, with a sentence, when the file at `path` with these bytes is another one.
    CPDFStatus check(const std::string& path, std::string_view bytes) const;
};
