// The dictionary, the stream record and the entry record (ISO 32000-2, 7.3.7 and 7.3.8).
#pragma once

#include "core/alloc.h"
#include "core/object.h"

// One entry: the value, immediately followed by the key's NUL-terminated characters in the same block.
struct PDF_DICT_ITEM {
    CPDFObj value;

    const char* key() const { return reinterpret_cast<const char*>(this + 1); }
    char* key() { return reinterpret_cast<char*>(this + 1); }
};

// Entries kept sorted by key in byte order, keys unique and without the slash.
class CPDFDictionary : public VXNew<CPDFDictionary> {
public:
    CPDFDictionary() = default;
    ~CPDFDictionary() { clear(); }
    CPDFDictionary(const CPDFDictionary&) = delete;
    CPDFDictionary& operator=(const CPDFDictionary&) = delete;

    // Deep-copies every entry of `src` into this empty dictionary. Entries that memory does not allow are left out.
    void copy_from(const CPDFDictionary* src);

    // Takes the entries of `src`, which is left empty; what this dictionary held is freed.
    void take(CPDFDictionary& src);

    // Frees every entry and leaves the dictionary empty.
    void clear();

    // The value under `key`, or null. Borrowed: ends with the next change of the dictionary.
    CPDFObj* get_item(const char* key) const;

    // Each inserts or replaces the entry `key`; arguments are copied. When memory runs out the dictionary stays as
    // it is. A null value, by pointer or by kind, removes the entry, since null means absent (ISO 32000-2, 7.3.7).
    void set_item(const char* key, const CPDFObj* value);
    void set_item_int(const char* key, int value);
    void set_item_str(const char* key, const void* bytes, int len);
    void set_item_name(const char* key, const char* name);
    void set_item_ref(const char* key, const PDF_REF& ref);
    void set_item_arr(const char* key, const CPDFArray* array);
    void set_item_dict(const char* key, const CPDFDictionary* dict);

    void remove_item(const char* key);

    // The value under `key`, added at tag 0 when absent, for the caller to fill; null when memory runs out.
    CPDFObj* value_slot(const char* key);

    // For readers that build a dictionary in file order: appends an entry at tag 0 whose key is `key_len` bytes, without
    // keeping the order. sort_items must follow before any other use; of equal keys the last stays.
    CPDFObj* append_unsorted(const char* key, size_t key_len);
    void sort_items();

    static const char* const sm_tag_subtype;
    static const char* const sm_tag_parent;
    static const char* const sm_tag_font;
    static const char* const sm_tag_acro_form;
    static const char* const sm_tag_filter;
    static const char* const sm_tag_fdec;
    static const char* const sm_tag_length;

    PDF_DICT_ITEM** items = nullptr;  // owned, and so is every item
    int32_t count = 0;

private:
    int32_t m_capacity = 0;

public:
    // Byte range of the dictionary in the file it was read from; -1 when it did not come from the file's own bytes.
    int64_t src_begin = -1;
    int64_t src_end = -1;

private:
    bool find(const char* key, int32_t& pos) const;
    bool reserve_one();
    template <typename Build>
    void set_built(const char* key, Build&& build);
};

// A stream value. The data is not owned: it stays in the file or in the object store.
struct CPDFStreamRec : VXNew<CPDFStreamRec> {
    CPDFDictionary dict;
    uint32_t in_file = 0;    // 1 when the data lies in the file, 0 for data held in memory
    uint32_t data_len = 0;   // bytes, as stored (not decoded)
    PDF_REF ref = {0, 0};    // the stream object
    uint32_t word_a = 0;     // 0 for data held in memory
    uint32_t in_memory = 0;  // 1 for data held in memory
    uint64_t handle = 0;     // file position of the data, or what CPDFXRefTable::set_mem_stream returned

    // Makes this empty record a deep copy of `src`, sharing the data.
    void copy_from(const CPDFStreamRec* src);
};
