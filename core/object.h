// Object values: the tagged value that holds everything read from or written into a document (ISO 32000-2, 7.3).
#pragma once

#include <cstdint>

#include "core/pdf_string.h"

class CPDFArray;
class CPDFDictionary;
class CPDFXRefTable;
struct CPDFStreamRec;

// Signed fixed point with 26 fraction bits; 1.0 is 0x4000000.
using VXFIX = int64_t;
constexpr VXFIX VXFIX_ONE = 0x4000000;

// The integer value of a fixed-point number; halves round up.
constexpr int32_t fix_to_int(VXFIX value)
{
    return static_cast<int32_t>(static_cast<VXFIX>(static_cast<uint64_t>(value) + 0x2000000u) >> 26);
}

// An indirect reference. References are compared by object number only.
struct PDF_REF {
    uint32_t num;  // object number; 0 means none
    uint32_t gen;  // generation number
};

enum PDF_OBJ_TYPE : int32_t {
    PDF_OBJ_NULL = 0,
    PDF_OBJ_BOOL = 1,
    PDF_OBJ_INT = 2,
    PDF_OBJ_REAL = 3,
    PDF_OBJ_STRING = 4,
    PDF_OBJ_NAME = 5,
    PDF_OBJ_ARRAY = 6,
    PDF_OBJ_DICT = 7,
    PDF_OBJ_REF = 8,
    PDF_OBJ_STREAM = 9,
};

// A value that owns its payload. It is never copied by assignment, only through copy_from, and frees itself at the
// end of its scope.
class CPDFObj {
public:
    CPDFObj() { clear(); }
    ~CPDFObj()
    {
        if (owns_storage())
            free();
    }
    CPDFObj(const CPDFObj&) = delete;
    CPDFObj& operator=(const CPDFObj&) = delete;

    // Releases the payload and leaves tag 0; may be called any number of times. A stream's data is not released.
    void free();

    // Releases the payload, then becomes a deep copy of `src`; null gives tag 0. When memory runs out a string is
    // left empty and anything else absent (tag 0).
    void copy_from(const CPDFObj* src);

    // Takes the payload of `src`, which is left null; what this value held is released.
    void take(CPDFObj& src);

    // Each frees the value and sets it anew. The string and name forms copy their bytes and leave the value as
    // copy_from does when memory runs out.
    void set_bool(int value);
    void set_int(int32_t value);
    void set_real(VXFIX value);
    void set_ref(const PDF_REF& value);
    void set_name(const char* characters);
    void set_string(const void* bytes, int32_t len);

    // Frees the value and gives it a new empty container, which is returned and stays owned by this value; null, with
    // the value left null, when memory runs out.
    CPDFArray* set_array();
    CPDFDictionary* set_dict();
    CPDFStreamRec* set_stream();

    bool is_name(const char* characters) const;

    // Payload by kind, or null when the value is of another kind. Borrowed: ends with the next change of the value.
    CPDFArray* array() const { return type == PDF_OBJ_ARRAY ? arr : nullptr; }
    CPDFDictionary* dictionary() const { return type == PDF_OBJ_DICT ? dict : nullptr; }
    const char* name_text() const { return type == PDF_OBJ_NAME ? name : nullptr; }

    // The dictionary of a dictionary or of a stream; null for other kinds.
    CPDFDictionary* any_dictionary() const;

    int32_t type;  // PDF_OBJ_TYPE
    union {
        int32_t ival;           // boolean or integer
        VXFIX fval;             // real
        PDF_String str;         // string; owned buffer from VXAlloc
        char* name;             // owned, from VXAlloc, without the slash
        CPDFArray* arr;         // owned, from new
        CPDFDictionary* dict;   // owned, from new
        PDF_REF ref;            // reference
        CPDFStreamRec* stream;  // owned, from new
    };

private:
    // Tag 0, and every word of the payload 0.
    void clear()
    {
        type = PDF_OBJ_NULL;
        str = {0, nullptr};
        fval = 0;
    }

    bool owns_storage() const { return type >= PDF_OBJ_STRING && type != PDF_OBJ_REF; }
};

// The integer value of a number object: an integer as it is, a real rounded, 0 for any other kind.
int32_t integer_value(const CPDFObj& obj);

// The integer value of an entry: a number directly, anything else after resolving. 0 for null or a non-number.
int32_t resolve_integer(CPDFXRefTable* xref, const CPDFObj* entry);

// Turns an entry into a private value: a reference is fetched through `xref` when that is not null, anything else
// is copied deeply. `out` is freed first; a null `src` leaves it at tag 0.
void resolve_obj(CPDFXRefTable* xref, const CPDFObj* src, CPDFObj& out);

// resolve_obj for an entry that the caller owns and does not need any more: a direct value is taken out of it.
void take_obj(CPDFXRefTable* xref, CPDFObj* src, CPDFObj& out);

// resolve_obj without the copy where none is needed: returns `src` itself when it is no reference, otherwise
// `scratch`, which receives the fetched object. Never null; a null `src` gives `scratch` at tag 0.
// The result is borrowed from `src` or `scratch` and must not be changed.
const CPDFObj* view_obj(CPDFXRefTable* xref, const CPDFObj* src, CPDFObj& scratch);

// The view of an entry together with the value it may need: what `entry` is or refers to, never null, while both live.
//     const CPDFEntryView kids(xref, dict.get_item("Kids"));
//     if (const CPDFArray* array = kids->array()) ...
class CPDFEntryView {
public:
    CPDFEntryView(CPDFXRefTable* xref, const CPDFObj* entry) : m_value(view_obj(xref, entry, m_fetched)) {}

    const CPDFObj& operator*() const& { return *m_value; }
    const CPDFObj* operator->() const& { return m_value; }
    // What a view that ends at once gives would be gone.
    const CPDFObj& operator*() const&& = delete;
    const CPDFObj* operator->() const&& = delete;

private:
    CPDFObj m_fetched;
    const CPDFObj* m_value;  // borrowed from the entry, or m_fetched
};
