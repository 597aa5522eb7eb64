// Where the object store finds the objects, sections and stream data that are not in memory.
#pragma once

#include <cstdint>

#include "core/entry_change.h"
#include "core/key_set.h"
#include "core/object.h"

class CPDFStream;
class CPDFXRefTable;
struct PDF_XREF_ENTRY;

// Implemented by the file reader, and in memory by tests. Nothing here reports errors: what can't be read is absent.
class CPDFObjectSource {
public:
    virtual ~CPDFObjectSource();

    // Makes `out` (tag 0 on entry) the object `num` that `entry` locates; leaves it at tag 0 when there is none. With
    // `keys`, a dictionary need hold only the entries named there; null asks for everything.
    virtual void read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                             const CPDFKeySet* keys) = 0;

    // Reads the cross-reference section at file position `pos` into the table's entries that are not known yet and
    // pushes the section before it on the pending stack. Returns 1, or 0 when there is no section.
    virtual int read_section(CPDFXRefTable& xref, uint32_t pos) = 0;

    // A new reader over the decoded data of `rec`, whose bytes are `memory` (`size` of them, borrowed while the
    // reader lives) or, when that is null, lie in the file. The caller owns it. Null when memory runs out.
    virtual CPDFStream* open_stream(CPDFXRefTable& xref, const CPDFStreamRec& rec, const unsigned char* memory,
                                    uint32_t size) = 0;

    // A changed dictionary as PDF text: what the source has as text need not be built to change a few of its entries.
    // `out` is empty on entry; false, and `out` empty, where the way over the object is to be taken. The defaults
    // always take it.
    //
    // The text of the object `num` that `entry` locates, with the changes.
    virtual bool splice_object(CPDFXRefTable& xref, uint32_t num, const PDF_XREF_ENTRY& entry,
                               PDF_ENTRY_CHANGES changes, PDF_String& out);
    // The same for a text that came from here.
    virtual bool splice_text(const PDF_String& text, PDF_ENTRY_CHANGES changes, PDF_String& out);
    // Reads such a text as read_object does.
    virtual void read_text(CPDFObj& out, const PDF_String& text, const CPDFKeySet* keys);

    // Flate-compresses `len` bytes into a new VXAlloc buffer that the caller owns; null on failure.
    virtual unsigned char* compress(const void* data, int len, int& out_len) = 0;
};
