// The kinds of fields that people tell apart, as one table.
#pragma once

#include <cstdint>
#include <span>

class CPDFField;

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
    const char* type_key;   // the type as "FT" has it, null for a container
    uint32_t set;           // flags that must be set
    uint32_t clear;         // flags that must be clear
    bool takes_value;       // whether such a field is filled
    const char* name;       // public name, one word
    const char* type_name;  // public name of the type
    const char* title;      // name in a sentence, without an article
};

const PDF_FIELD_KIND& field_kind(PDF_FIELD_KIND_ID id);

// The kind of a field of this type with these flags. Every pair has one; a type that is no PDF_FIELD_TYPE is a container.
const PDF_FIELD_KIND& field_kind(int32_t type, uint32_t flags);
const PDF_FIELD_KIND& field_kind(const CPDFField& field);

// The kind with this public name, or null.
const PDF_FIELD_KIND* field_kind(const char* name);

// The PDF_FIELD_TYPE that a value of "FT" names; `otherwise` when it names none, or is null.
int32_t field_type(const char* type_key, int32_t otherwise);

// A flag under its public name. Two flags may share a bit, on kinds that have nothing in common.
struct PDF_FIELD_FLAG_WORD {
    const char* word;
    uint32_t flag;   // one PDF_FIELD_FLAG
    uint32_t kinds;  // the kinds that the flag means something to: a bit for each PDF_FIELD_KIND_ID

    bool has_kind(const PDF_FIELD_KIND& kind) const { return (kinds >> kind.id & 1) != 0; }
};

// All flags but those that make the kind, in the order in which lists of them are shown.
std::span<const PDF_FIELD_FLAG_WORD> field_flag_words();
