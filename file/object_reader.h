// Objects and stream data, found in the bytes of a file when the object store asks for them.
#pragma once

#include <memory>

#include "core/dictionary.h"
#include "core/object_source.h"
#include "file/filter/filters.h"
#include "file/object_stream.h"
#include "file/read_budget.h"
#include "file/syntax/splice.h"

class CPDFSecurityHandler;

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

// What was found broken; an object that the cross-reference data does not have, or that is free, is null and no damage.
enum class PDF_DAMAGE {
    NONE,
    SECTION,        // an older cross-reference section can't be read
    OBJECT,         // an object is not at its place, or can't be parsed
    OBJECT_STREAM,  // an object stream can't be decoded
};

// Parses on demand, straight from the bytes, which are borrowed and outlive the reader. Where sections stand is known to the
// class that stands on this one.
class CPDFObjectReader : public CPDFObjectSource {
public:
    ~CPDFObjectReader() override;

    void read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                     const CPDFKeySet* keys) override;
    CPDFStream* open_stream(CPDFXRefTable& xref, const CPDFStreamRec& rec, const unsigned char* memory,
                            uint32_t size) override;
    bool splice_object(CPDFXRefTable& xref, uint32_t num, const PDF_XREF_ENTRY& entry, PDF_ENTRY_CHANGES changes,
                       PDF_String& out) override;
    bool splice_text(const PDF_String& text, PDF_ENTRY_CHANGES changes, PDF_String& out) override;
    void read_text(CPDFObj& out, const PDF_String& text, const CPDFKeySet* keys) override;
    unsigned char* compress(const void* data, int len, int& out_len) override;

    // From now on strings and stream data are decrypted; those of the object `dictionary`, where the handler was read, are plain.
    void set_security(std::unique_ptr<CPDFSecurityHandler> security, uint32_t dictionary);
    // Null for a file that is not encrypted.
    const CPDFSecurityHandler* security() const { return m_security.get(); }

    // The work that may still be done.
    CPDFReadBudget& budget() { return m_budget; }

    // What reading found broken first, and the number of the object.
    PDF_DAMAGE damage() const { return m_damage; }
    uint32_t damaged_object() const { return m_damaged_object; }

protected:
    CPDFObjectReader(const uint8_t* data, size_t size);

    // The object `num` that begins at byte `at`; false when it is not there.
    bool parse_object_at(CPDFXRefTable& xref, CPDFObj& out, size_t at, uint32_t num, const CPDFKeySet* keys);
    // Keeps what is the first damage, unless it may be for want of work that nothing was read.
    void note_damage(PDF_DAMAGE damage, uint32_t num = 0);
    // decode_stream at the expense of the budget.
    bool decode(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size, CPDFBytes& out);
    // The same for data that are in the file.
    bool decode_stored(CPDFXRefTable* xref, const CPDFStreamRec& rec, CPDFBytes& out);

    const uint8_t* m_data;  // borrowed from the document
    size_t m_size;
    CPDFReadBudget m_budget;
    bool m_in_length = false;  // a stream's indirect length is being fetched, or may not be

private:
    void decrypt_strings(CPDFObj& object, const PDF_REF& ref) const;
    void make_stream_value(CPDFXRefTable& xref, CPDFObj& out, size_t data_at, const PDF_REF& ref);
    size_t stream_length(CPDFXRefTable& xref, const CPDFDictionary& dict, size_t data_at);
    size_t search_stream_end(size_t data_at);
    void read_from_stream(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                          const CPDFKeySet* keys);
    const CPDFObjectStream* object_stream(CPDFXRefTable& xref, uint32_t num);
    const CPDFObjectStream* load_object_stream(CPDFXRefTable& xref, uint32_t num);

    bool m_in_container = false;  // an object stream is being decoded
    PDF_DAMAGE m_damage = PDF_DAMAGE::NONE;
    uint32_t m_damaged_object = 0;
    CPDFObjectStreamCache m_streams;
    CPDFSplicer m_splicer;
    std::unique_ptr<CPDFSecurityHandler> m_security;
    uint32_t m_security_num = 0;  // the encryption dictionary; 0 where it is in the trailer
};
