// Objects of one document, copied into another with all that they refer to.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <unordered_map>

#include "core/dictionary.h"
#include "core/object.h"
#include "file/status.h"

class CPDFObjectReader;
class CPDFXRefTable;

// A document that objects are taken from; all borrowed. Its reader's budget bounds the work.
struct COPY_SOURCE {
    CPDFXRefTable& xref;
    CPDFObjectReader& reader;
    const uint8_t* data;
    size_t size;
};

// Each object is copied once, under a new number, when finish() is called; until then it is only noted. Streams keep their
// filters; those of an encrypted file are decrypted.
class CPDFObjectCopier {
public:
    CPDFObjectCopier(const COPY_SOURCE& from, CPDFXRefTable& into) : m_from(from), m_into(into) {}

    // References to the object `num` become `to`, and it is not copied; with object number 0 they become null.
    void place(uint32_t num, const PDF_REF& to) { m_places[num] = to; }

    // What is done to each dictionary, and those in it, before its references change.
    void adapt_with(std::function<void(CPDFDictionary&)> adapt) { m_adapt = std::move(adapt); }

    // The entries, references to `into`, that the copy of the dictionary `num` gets in place of its own; a null value takes
    // its own away. Borrowed until finish().
    CPDFDictionary& entries_of(uint32_t num) { return m_entries[num]; }

    // The reference under which the object is copied. Number 0 for one that was placed so.
    PDF_REF copied(uint32_t num);

    // Makes every reference in `value`, which comes from the source, one that `into` has.
    void renumber(CPDFObj& value);

    // Copies everything that was asked for. Fails where that takes more work or memory than there is; a part is copied then.
    CPDFStatus finish();

private:
    void renumber(CPDFDictionary& dict);
    CPDFStatus copy(uint32_t num, const PDF_REF& to);
    CPDFStatus copy_stream(CPDFStreamRec& rec, const PDF_REF& to);

    COPY_SOURCE m_from;
    CPDFXRefTable& m_into;  // borrowed
    std::function<void(CPDFDictionary&)> m_adapt;
    std::unordered_map<uint32_t, PDF_REF> m_places;
    std::unordered_map<uint32_t, CPDFDictionary> m_entries;
    std::deque<uint32_t> m_waiting;  // the objects that are still to be copied
    uint64_t m_data_copied = 0;      // bytes of streams in the source's file
};

// Makes `value` a new object of `xref`, and a reference to it the entry `key` of `owner`.
void put_apart(CPDFXRefTable& xref, CPDFDictionary& owner, const char* key, CPDFObj& value);
