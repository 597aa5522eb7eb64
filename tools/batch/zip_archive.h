// One archive of many outputs (.zip, ZIP64 where it is needed), written as they come.
#pragma once

#include <string>
#include <string_view>

#include "file/output_file.h"

struct archive;
struct archive_entry;

// Entries are stored as they are, since PDF files are compressed already, and without times: equal entries make equal
// archives. A file gets its name when it is whole.
class ZipArchive {
public:
    ZipArchive() = default;
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    // `path` is "-" for standard output.
    CPDFStatus open(const std::string& path);

    // Appends an entry of both parts, one behind the other.
    CPDFStatus add(const std::string& name, std::string_view head, std::string_view tail);

    // Ends the archive; without that there is none.
    CPDFStatus finish();

private:
    void take(std::string_view bytes) noexcept;
    CPDFStatus put(std::string_view bytes);
    bool is_well() const { return m_problem.ok() && !m_has_no_memory; }
    CPDFStatus failure() const;

    std::string m_path;
    CPDFOutputFile m_file;
    bool m_to_stdout = false;
    CPDFStatus m_problem;  // of the file
    bool m_has_no_memory = false;
    bool m_is_over = false;            // what comes now is not written
    archive* m_archive = nullptr;      // owned
    archive_entry* m_entry = nullptr;  // owned
};
