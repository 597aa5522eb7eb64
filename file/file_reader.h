// The file behind the object store: finds cross-reference sections, objects and stream data in the bytes.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "core/dictionary.h"
#include "core/object_source.h"
#include "file/filter/filters.h"
#include "file/object_stream.h"
#include "file/read_budget.h"
#include "file/status.h"
#include "file/syntax/splice.h"

class CPDFLexer;

enum class PDF_SECTION_KIND {
    NONE,
    TABLE,   // "xref" and a trailer; hybrid files too
    STREAM,  // a cross-reference stream
};

// Raises a flag for the time of a scope.
class RaisedFlag {
public:
    explicit RaisedFlag(bool& flag) : m_flag(flag), m_before(flag) { flag = true; }
    ~RaisedFlag() { m_flag = m_before; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;

private:
    bool& m_flag;  // borrowed
    bool m_before;
};

// Reads one file. Everything is parsed on demand, straight from the bytes, which are borrowed and outlive the reader.
class CPDFFileReader : public CPDFObjectSource {
public:
    CPDFFileReader(const uint8_t* data, size_t size);

    // Reads the newest cross-reference section into `xref` and leaves the older ones pending.
    CPDFStatus start(CPDFXRefTable& xref);

    void read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                     const CPDFKeySet* keys) override;
    int read_section(CPDFXRefTable& xref, uint32_t pos) override;
    CPDFStream* open_stream(CPDFXRefTable& xref, const CPDFStreamRec& rec, const unsigned char* memory,
                            uint32_t size) override;
    bool splice_object(CPDFXRefTable& xref, uint32_t num, const PDF_XREF_ENTRY& entry, PDF_ENTRY_CHANGES changes,
                       PDF_String& out) override;
    bool splice_text(const PDF_String& text, PDF_ENTRY_CHANGES changes, PDF_String& out) override;
    void read_text(CPDFObj& out, const PDF_String& text, const CPDFKeySet* keys) override;
    unsigned char* compress(const void* data, int len, int& out_len) override;

    // The work that may still be done.
    CPDFReadBudget& budget() { return m_budget; }

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

    bool parse_object_at(CPDFXRefTable& xref, CPDFObj& out, size_t at, uint32_t num, const CPDFKeySet* keys);
    void make_stream_value(CPDFXRefTable& xref, CPDFObj& out, size_t data_at, const PDF_REF& ref);
    size_t stream_length(CPDFXRefTable& xref, const CPDFDictionary& dict, size_t data_at);
    size_t search_stream_end(size_t data_at);
    void read_from_stream(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                          const CPDFKeySet* keys);
    const CPDFObjectStream* object_stream(CPDFXRefTable& xref, uint32_t num);
    const CPDFObjectStream* load_object_stream(CPDFXRefTable& xref, uint32_t num);
    bool decode(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size, CPDFBytes& out);

    const uint8_t* m_data;  // borrowed from the document
    size_t m_size;
    size_t m_shift = 0;
    CPDFReadBudget m_budget;
    bool m_in_length = false;     // a stream's indirect length is being fetched
    bool m_in_container = false;  // an object stream is being decoded
    PDF_SECTION_KIND m_newest_kind = PDF_SECTION_KIND::NONE;
    uint32_t m_newest_pos = 0;
    CPDFDictionary m_trailer;
    std::unordered_set<size_t> m_sections;  // positions of the sections read or pending
    CPDFObjectStreamCache m_streams;
    CPDFSplicer m_splicer;
};
