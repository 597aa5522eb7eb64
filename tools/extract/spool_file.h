// A file without a name for what is too much to be kept in memory.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "file/status.h"

class SpoolFile {
public:
    SpoolFile() = default;
    ~SpoolFile();
    SpoolFile(const SpoolFile&) = delete;
    SpoolFile& operator=(const SpoolFile&) = delete;

    // Makes it in the folder of the file `beside`; where that can't be, or is "" or "-", in the one for temporary files.
    CPDFStatus open(const std::string& beside);

    // A failure is told by finish.
    void put(std::string_view bytes);

    // Ends writing; `bytes` are all that was put, borrowed while this lives.
    CPDFStatus finish(std::string_view& bytes);

    // The same, and makes it the file `path`, which is replaced as a whole.
    CPDFStatus finish_as(const std::string& path);

private:
    struct CLOSE {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, CLOSE> m_file;
    size_t m_size = 0;
    bool m_good = true;
    void* m_mapping = nullptr;  // owned
};
