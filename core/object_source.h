// Where the object store finds the objects, sections and stream data that are not in memory.
#pragma once

#include <cstdint>

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

    // Flate-compresses `len` bytes into a new VXAlloc buffer that the caller owns; null on failure.
    virtual unsigned char* compress(const void* data, int len, int& out_len) = 0;
};
