// The text of a data file in UTF-8, however it is stored.
#pragma once

#include <string>
#include <string_view>

#include "file/file_bytes.h"
#include "file/status.h"

// Maps the file; only what is UTF-16 is converted, once. It owns the text of files.
class CPDFDataText {
public:
    // Opens the file, or standard input for "-". What comes through a pipe is put aside on the disk as a whole. UTF-16 is
    // known by its byte order mark.
    CPDFStatus open(const std::string& path);

    // The same with bytes in memory, which are borrowed.
    CPDFStatus take(std::string_view bytes);

    std::string_view text() const { return m_text; }

private:
    CPDFStatus open_input();
    CPDFStatus convert(std::string_view bytes);

    CPDFFileBytes m_file;
    std::string m_converted;
    std::string_view m_text;  // borrowed from either, or from the caller of take
};
