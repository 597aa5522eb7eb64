// PDF files for tests, spelled object by object; the positions in them are right unless a test says otherwise.
#pragma once

#include <filesystem>

#include "file/file_reader.h"
#include "tests/support/memory_document.h"

// Writes a file from front to back. A section collects the objects since the one before it and names that one in "Prev".
class PdfBuilder {
public:
    // Begins with `junk` and the header; positions are counted from the header, or from byte 0 with count_junk.
    explicit PdfBuilder(const std::string& junk = "");
    PdfBuilder& count_junk() { return m_origin = 0, *this; }

    PdfBuilder& raw(const std::string& more) { return text += more, *this; }
    PdfBuilder& object(uint32_t num, const std::string& text, uint32_t gen = 0);
    // "Length" is written unless `entries` has one.
    PdfBuilder& stream(uint32_t num, const std::string& entries, const std::string& data);
    PdfBuilder& object_stream(uint32_t num, const std::vector<std::pair<uint32_t, std::string>>& objects,
                              const std::string& more_entries = "");
    // What the next section says about `num`.
    PdfBuilder& entry(uint32_t num, uint32_t type, uint64_t index, uint32_t gen);

    // Objects 1 to 3, the catalog with its form, and each field as object 10 and following.
    PdfBuilder& form(const std::vector<std::string>& fields, const std::string& form_entries = "");

    // Each ends a section, "startxref" included. `more` follows "Size", "Root" and "Prev" of the trailer; what it repeats
    // replaces them.
    PdfBuilder& table(const std::string& more = "");
    PdfBuilder& xref_stream(uint32_t num, const std::string& more = "", const std::vector<int>& widths = {1, 4, 2});
    // The objects in object streams go to the stream, and are free in the table.
    PdfBuilder& hybrid(uint32_t num, const std::string& more = "");

    // The position of the next byte, as the file counts.
    uint32_t here() const { return static_cast<uint32_t>(text.size() - m_origin); }

    std::string text;
    std::string entry_end = " \n";  // end of line of table entries
    uint32_t section = 0;           // position of the last section

private:
    std::string trailer_entries(const std::string& more) const;
    void write_stream_section(uint32_t num, const std::map<uint32_t, PDF_XREF_ENTRY>& entries, const std::string& more,
                              const std::vector<int>& widths);
    PdfBuilder& finish(uint32_t at);

    size_t m_origin;
    uint32_t m_size = 1;
    std::map<uint32_t, PDF_XREF_ENTRY> m_entries = {{0, {PDF_XREF_FREE, 0, 65535}}};
};

// A file opened with the reader alone. The bytes lie in a block of exactly their size.
class FileAtWork {
public:
    explicit FileAtWork(const std::string& text);

    // Object `num` as text, "null" when there is none.
    std::string show(uint32_t num);
    std::string data(uint32_t num) { return stream_data(xref, num); }

    const std::vector<uint8_t> bytes;
    CPDFFileReader reader;
    CPDFXRefTable xref;
    const CPDFStatus status;
};

// A folder of its own for one test, removed at the end.
class TempFolder {
public:
    TempFolder();
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    std::string path(const std::string& name) const { return (m_path / name).string(); }
    std::string write(const std::string& name, const std::string& bytes) const;  // returns the path
    auto files() const { return std::distance(std::filesystem::directory_iterator(m_path), {}); }

private:
    std::filesystem::path m_path;
};

// `piece` so many times.
std::string repeated(const std::string& piece, size_t times);

std::string read_text_file(const std::string& path);

// The real files that FORMWORK_CORPUS names; none when it names no folder.
std::vector<std::string> corpus_files();

// Every fourth of them, for tests that take long; all of them with FORMWORK_FULL.
std::vector<std::string> corpus_sample();

// A file as the parameter of a test: what stands for it in the name of the case.
std::string file_label(const testing::TestParamInfo<std::string>& file);

// The PDF files directly in `folder`, sorted; none when there is no such folder.
std::vector<std::string> pdf_files(const std::string& folder);
