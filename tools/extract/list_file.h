// A file with a word a line.
#pragma once

#include <algorithm>
#include <string>

#include "formats/import/data_text.h"

class ListFile {
public:
    // "-" is standard input.
    CPDFStatus open(const std::string& path) { return m_file.open(path); }

    // The next line that is not empty; false when there is none, and before a file is opened.
    bool next(std::string& line)
    {
        const std::string_view text = m_file.text();
        while (m_at < text.size()) {
            const size_t end = std::min(text.find('\n', m_at), text.size());
            line = text.substr(m_at, end - m_at);
            m_at = end + 1;
            if (line.ends_with('\r'))
                line.pop_back();
            if (!line.empty())
                return true;
        }
        return false;
    }

private:
    CPDFDataText m_file;
    size_t m_at = 0;
};
