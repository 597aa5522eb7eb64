// The array of object values (ISO 32000-2, 7.3.6).
#pragma once

#include "core/alloc.h"
#include "core/object.h"

// A sequence of values that it owns. A fresh array is empty; the indices are zero-based.
class CPDFArray : public VXNew<CPDFArray> {
public:
    CPDFArray() = default;
    ~CPDFArray() { clear(); }
    CPDFArray(const CPDFArray&) = delete;
    CPDFArray& operator=(const CPDFArray&) = delete;

    // Deep-copies every element of `src` into this empty array. Elements that memory does not allow are left out.
    void copy_from(const CPDFArray* src);

    // Frees every element and leaves the array empty.
    void clear();

    // Appends an element at tag 0 and returns it for the caller to fill, or null when memory runs out. Borrowed: ends
    // with the next change of the array.
    CPDFObj* append();

    // Each appends one element; when memory runs out the array stays as it is.
    void append_str(const void* bytes, int len);
    void append_int(int value);
    void append_ref(const PDF_REF& ref);
    void append_arr(const CPDFArray* src);

    // Removes and frees the element at `index`, moving the later ones forward; an index outside does nothing.
    void remove_obj(int index);

    // Element `index`, or null outside the array.
    const CPDFObj* at(int index) const { return index >= 0 && index < count ? &items[index] : nullptr; }

    CPDFObj* items = nullptr;  // owned, `count` elements in a row
    int32_t count = 0;

private:
    template <typename Build>
    void append_built(Build&& build);

    int32_t m_capacity = 0;
};
