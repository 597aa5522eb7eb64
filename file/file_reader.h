// One file behind the object store: its cross-reference sections, and through them its objects.
#pragma once

#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/dictionary.h"
#include "file/object_reader.h"
#include "file/status.h"

class CPDFLexer;

enum class PDF_SECTION_KIND {
    NONE,
    TABLE,   // "xref" and a trailer; hybrid files too
    STREAM,  // a cross-reference stream
};

// Finds the sections in the bytes, newest first, and fills the entries of the store from them.
class CPDFFileReader : public CPDFObjectReader {
public:
    CPDFFileReader(const uint8_t* data, size_t size) : CPDFObjectReader(data, size) {}

    // Reads the newest cross-reference section into `xref` and leaves the older ones pending.
    CPDFStatus start(CPDFXRefTable& xref);

    // To be called after start: makes an encrypted file readable with the empty password or `password`, in UTF-8. OK for a
    // file that is not encrypted.
    CPDFStatus unlock(CPDFXRefTable& xref, std::string_view password);

    // Whether the password permits to put values into fields, and to add, remove and change fields (ISO 32000-2, table 22).
    bool permits_filling() const;
    bool permits_editing() const;

    int read_section(CPDFXRefTable& xref, uint32_t pos) override;

    // The trailer of the newest section; "Root" and the like are filled in from older ones where it lacks them.
    const CPDFDictionary& trailer() const { return m_trailer; }

    // Kind and file position of the newest section, as they stand behind "startxref".
    PDF_SECTION_KIND newest_kind() const { return m_newest_kind; }
    uint32_t newest_pos() const { return m_newest_pos; }

    // Bytes before the header, which the file's own positions do not count.
    size_t shift() const { return m_shift; }

private:
    bool find_start(uint32_t& pos) const;
    bool place_section(uint32_t pos, size_t& at);
    bool table_at(size_t at) const;
    bool object_at(size_t at) const;
    bool section_near(size_t base, size_t& at) const;
    bool read_section_at(CPDFXRefTable& xref, size_t at, PDF_SECTION_KIND& kind);
    bool read_table(CPDFXRefTable& xref, CPDFLexer& lexer);
    void read_subsection(CPDFXRefTable& xref, CPDFLexer& lexer, uint32_t first, uint32_t count,
                         std::vector<uint32_t>& freed);
    void read_hidden(CPDFXRefTable& xref, const CPDFDictionary& trailer, const std::vector<uint32_t>& freed);
    bool read_xref_stream(CPDFXRefTable& xref, size_t at);
    void read_stream_entries(CPDFXRefTable& xref, const CPDFDictionary& dict, const CPDFBytes& bytes);
    void keep_trailer(const CPDFDictionary& trailer);
    void follow_trailer(CPDFXRefTable& xref, const CPDFDictionary& trailer);
    bool set_entry(CPDFXRefTable& xref, uint32_t num, uint32_t type, uint64_t index, uint64_t gen) const;
    uint32_t largest_number() const;

    size_t m_shift = 0;
    PDF_SECTION_KIND m_newest_kind = PDF_SECTION_KIND::NONE;
    uint32_t m_newest_pos = 0;
    CPDFDictionary m_trailer;
    std::unordered_set<size_t> m_sections;  // positions of the sections read or pending
};
