// The kinds of fields that people tell apart, as one table.
#pragma once

#include <cstdint>

// Rows of the table, in its order.
enum PDF_FIELD_KIND_ID : int32_t {
    KIND_CONTAINER,  // no field type: a group of named fields
    KIND_RADIO,
    KIND_PUSH,
    KIND_CHECK,
    KIND_TEXT,
    KIND_COMBO,
    KIND_LIST,
    KIND_SIGNATURE,
    KIND_COUNT,
};

struct PDF_FIELD_KIND {
    PDF_FIELD_KIND_ID id;
    int32_t type;           // PDF_FIELD_TYPE
    uint32_t set;           // flags that must be set
    uint32_t clear;         // flags that must be clear
    const char* name;       // public name, one word
    const char* type_name;  // public name of the type
    const char* title;      // name in a sentence, without an article
};

// The kind of a field of this type with these flags. Every pair has one; a type that is no PDF_FIELD_TYPE is a container.
const PDF_FIELD_KIND& field_kind(int32_t type, uint32_t flags);

// The kind with this public name, or null.
const PDF_FIELD_KIND* field_kind(const char* name);

// Whether fields of this kind are filled: text fields, check boxes, radio groups and choices.
bool takes_values(int32_t type, uint32_t flags);
