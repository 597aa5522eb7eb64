// The files that a verb for many goes through.
#pragma once

#include <string>
#include <vector>

#include "tools/extract/list_file.h"
#include "tools/verb.h"

struct QUEUED_FILE {
    std::string path;
    CPDFStatus status;  // why a folder can't be gone through
};

// Hands out files as they were given: those of the command line, then those of a list, folders with what lies in them. It
// keeps no more than the folders that it is in.
class FileQueue {
public:
    // `files` is borrowed.
    FileQueue(const std::vector<COMMAND_WORD>& files, bool walks_folders) : m_files(files), m_walks(walks_folders) {}

    // A file with one path a line, or standard input for "-".
    CPDFStatus open_list(const std::string& path);

    // The next file; false when there is none. In folders these are the .pdf files, sorted by their names together with the
    // folders in them; links to folders are not followed.
    bool next(QUEUED_FILE& file);

private:
    struct ENTRY {
        std::string path;
        bool is_folder;
    };

    bool next_given(std::string& path);
    CPDFStatus enter(const std::string& folder);

    const std::vector<COMMAND_WORD>& m_files;
    bool m_walks;
    size_t m_taken = 0;
    ListFile m_list;
    std::vector<ENTRY> m_entries;  // of the folders that were entered, the next one last
};
