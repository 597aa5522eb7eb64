// The submit and reset events of an XFA template, as a flat list.
#pragma once

#include <cstdint>

class TiXmlElement;

struct PDF_FIELD_ENTRY {
    char* name;    // owned block of both strings: the path, every name with a '.' before it, e.g. .form1.page1.amount
    char* value;   // in the same block: the target of a submit, empty for a reset
    int32_t kind;  // PDF_XFA_EVENT: 1 submit, 2 reset
};

// Collects (path, value, kind) entries in document order and owns them.
class _PDF_FIELD_SET_ {
public:
    _PDF_FIELD_SET_() = default;
    ~_PDF_FIELD_SET_();
    _PDF_FIELD_SET_(const _PDF_FIELD_SET_&) = delete;
    _PDF_FIELD_SET_& operator=(const _PDF_FIELD_SET_&) = delete;

    // Appends one entry, copying both strings; returns its value copy, or null with the set unchanged when memory
    // runs out.
    char* add(const char* name, const char* value, int kind);

    // Walks `elem`, a subform, and its descendants. `path` is the caller's buffer of 256 bytes whose first `len` bytes
    // hold the path of the element's parent; fields whose path does not fit are skipped.
    void load(TiXmlElement* elem, char* path, int len);

    PDF_FIELD_ENTRY* items = nullptr;  // owned
    int32_t count = 0;
    int32_t cap = 0;

private:
    void load_field(TiXmlElement* field, char* path, int len);
};

constexpr int FIELD_SET_PATH = 256;
