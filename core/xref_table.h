// The object store: reads objects as private copies and keeps the new versions of changed ones.
#pragma once

#include <cstdint>

#include "core/entry_change.h"
#include "core/growable.h"
#include "core/key_set.h"
#include "core/object.h"

class CPDFObjectSource;
class CPDFStream;

enum PDF_XREF_TYPE : uint32_t {
    PDF_XREF_FREE = 0,       // free, or absent while `gen` is PDF_XREF_NO_GEN
    PDF_XREF_IN_FILE = 1,    // at file position `index`
    PDF_XREF_IN_STREAM = 2,  // number `gen` in object stream `index`
    PDF_XREF_CHANGED = 3,    // changed version at `index` of the changed-object list
};

constexpr uint32_t PDF_XREF_NO_GEN = 0xFFFFFFFF;

struct PDF_XREF_ENTRY {
    uint32_t type;  // PDF_XREF_TYPE
    uint32_t index;
    uint32_t gen;
};

// The new version of one object; the record owns it.
struct PDF_CHANGED_OBJ {
    PDF_REF ref;
    CPDFObj obj;
    PDF_String text;  // the version as PDF text, by change_entries, until get_xref2 makes `obj` of it
};

// What the entry of a changed object was before.
struct PDF_ENTRY_BEFORE {
    uint32_t num;
    PDF_XREF_ENTRY entry;
};

// A cross-reference section of the file that has not been read yet.
struct PDF_PENDING_SECTION {
    uint32_t pos;  // file position
};

// Data of a stream object that is held in memory, as stored in the file (encoded).
struct PDF_MEM_STREAM {
    uint32_t num;         // object number
    unsigned char* data;  // owned, from VXAlloc
    uint32_t len;
};

// One document's object store, used by one caller at a time. Objects are never handed out themselves: readers get
// private copies, and a change is a complete new version handed back with store_changed.
class CPDFXRefTable {
public:
    // `source` is borrowed and outlives the table; null for a table that holds only what is stored into it.
    explicit CPDFXRefTable(CPDFObjectSource* source = nullptr);
    ~CPDFXRefTable();
    CPDFXRefTable(const CPDFXRefTable&) = delete;
    CPDFXRefTable& operator=(const CPDFXRefTable&) = delete;

    // Makes `out`, which is at tag 0, a private copy of the newest version of the object; a missing object leaves it so.
    // An object that is itself a reference is followed. The generation is not compared. A copy is whole: when memory
    // runs out the object is missing.
    void get_entity(CPDFObj& out, const PDF_REF& ref) { get_entity(out, ref, nullptr); }

    // The same, where a dictionary may come with only the entries in `keys`. Never store such a copy back.
    void get_entity(CPDFObj& out, const PDF_REF& ref, const CPDFKeySet* keys);

    // The changed-object record of `num`, made at tag 0 if needed; null when memory runs out. Borrowed: ends with the
    // next new record.
    PDF_CHANGED_OBJ* get_xref2(int num, int gen);

    // Stores a copy of `obj` as the new version of the object; `obj` stays the caller's. When there is no memory the
    // document keeps the old version.
    void store_changed(const PDF_REF& ref, const CPDFObj& obj);

    // The same without the copy: takes the payload of `obj`, which is left null. Returns whether it is stored.
    bool take_changed(const PDF_REF& ref, CPDFObj& obj);

    // Stores a new version of a dictionary in which some entries are set or removed: the same as get_entity, set_item and
    // store_changed, but where the source can, the version is text and nothing else of the dictionary is built.
    PDF_CHANGE_RESULT change_entries(const PDF_REF& ref, PDF_ENTRY_CHANGES changes);

    // Drops every changed version and all data held in memory: the objects are again what the file says, and the object
    // numbers handed out are free again.
    void discard_changes();

    // Sets `out`, which is empty, to a copy of a string's bytes or a name's characters, resolving a reference
    // first; empty for any other kind.
    void read_obj_string(PDF_String& out, const CPDFObj* obj) { read_obj_string(this, out, obj); }
    static void read_obj_string(CPDFXRefTable* xref, PDF_String& out, const CPDFObj* obj);

    // Hands out a new object number (generation 0), after reading every section that is still pending.
    uint32_t new_obj_num();

    // A new reader over the decoded data of `rec`, or null for a null record; the caller owns it.
    CPDFStream* make_stream(const CPDFStreamRec* rec);

    // Flate-compresses into a new VXAlloc buffer that the caller owns; null on failure.
    unsigned char* compress_data(const void* data, int len, int& out_len);

    // Takes `data`, from VXAlloc, as the in-memory data of stream object `ref`, replacing what was held for it. Returns
    // the data handle for the stream record; 0 when memory runs out (the data is then released).
    uint64_t set_mem_stream(const PDF_REF& ref, unsigned char* data, int len);

    // Makes a stream of the entries of `dict`, which are taken, "Length" and `data`, from VXAlloc and taken, the new version
    // of the object. The data are what the filters in `dict` say. Nothing changes when memory runs out.
    PDF_CHANGE_RESULT take_stream(const PDF_REF& ref, CPDFDictionary& dict, unsigned char* data, int len);

    // The data behind a handle of set_mem_stream, or null. Borrowed: ends with the object's next set_mem_stream.
    const PDF_MEM_STREAM* mem_stream(uint64_t handle) const;

    // Reads the section at `pos` into the object entries; 0 on failure.
    int XRefRead(uint32_t pos);

    // For section readers. The entry of `num`, growing the entries as get_xref2 does; null when memory runs out.
    PDF_XREF_ENTRY* reserve_entry(uint32_t num);
    void push_pending(uint32_t pos);

    // The entry of `num`, reading pending sections until it is known; null when there is none.
    const PDF_XREF_ENTRY* entry_of(uint32_t num);

    // Reads every pending section; entries are then final.
    void read_all_sections();

    uint32_t entry_count() const { return m_entry_cnt; }
    const PDF_XREF_ENTRY* entries() const { return m_entries; }
    const PDF_CHANGED_OBJ* changed() const { return m_changed; }
    const PDF_ENTRY_BEFORE* before() const { return m_before; }
    int32_t changed_count() const { return m_changed_cnt; }
    uint32_t next_num() const { return m_next_num; }

    // For section readers: raises the next free object number to at least `num`.
    void raise_next_num(uint32_t num);

private:
    void fetch(CPDFObj& out, const PDF_REF& ref, const CPDFKeySet* keys);
    void read_version(CPDFObj& out, const PDF_CHANGED_OBJ& record, const CPDFKeySet* keys) const;
    bool splice(const PDF_REF& ref, PDF_ENTRY_CHANGES changes, PDF_String& out);
    PDF_CHANGED_OBJ* record_of(uint32_t num, uint32_t gen);
    bool grow_entries(uint32_t num);
    bool grow_changed();
    void keep_next_num();
    PDF_MEM_STREAM* mem_slot(uint32_t num);

    PDF_XREF_ENTRY* m_entries = nullptr;  // owned
    uint32_t m_entry_cnt = 0;
    uint32_t m_entry_cap = 0;  // entries that there is room for
    uint32_t m_next_num = 1;
    PDF_CHANGED_OBJ* m_changed = nullptr;  // owned
    PDF_ENTRY_BEFORE* m_before = nullptr;  // owned; beside m_changed
    uint32_t m_next_num_before = 0;        // the next free object number before the first change, 0 before that
    int32_t m_changed_cnt = 0;
    int32_t m_changed_cap = 0;
    CPDFGrowable<PDF_PENDING_SECTION, 8> m_pending;
    CPDFGrowable<PDF_MEM_STREAM, 8> m_mem_streams;  // with the data
    CPDFObjectSource* m_source;                     // borrowed from the document
};
