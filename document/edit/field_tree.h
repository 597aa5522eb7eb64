// Changes of the field tree, as a document needs them: the engine's operations, and what goes with them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "document/edit/edit.h"

class CPDFField;

// Appends the field dictionary `ref`, whose "Parent" is set, as a kid of `parent`, or as a top-level field when that is
// null, and takes it into the index of names. Null when it does not load or memory runs out.
CPDFField* attach_field(EDIT_TARGET& target, CPDFField* parent, const PDF_REF& ref);

// Takes `field` with all under it out of the tree, out of every list of the form that names them, and out of the index
// of names, and deletes it. NO_DICTIONARY, with the tree as it was, where the array that lists it can't be read; when
// memory runs out a list may still name it.
[[nodiscard]] PDF_CHANGE_RESULT detach_field(EDIT_TARGET& target, CPDFField& field);

// The field with exactly this full name, or null.
CPDFField* field_named(EDIT_TARGET& target, const std::string& name);

// Whether `field` may have kids with names of their own: it shows nothing itself.
bool can_hold_fields(const EDIT_TARGET& target, const CPDFField& field);

// What is wrong with `name` as one part of a full name, in UTF-8; empty when nothing is.
std::string wrong_partial_name(const std::string& name);

// Whether fields could be found under the full name `name`, in UTF-8: longer ones are cut when they are read.
bool is_readable_name(const std::string& name);

// Makes `out`, at tag 0, the entry `key` that a field under `parent` inherits, from the nearest dictionary above it that
// has one. False when none has, or `parent` is null.
bool inherited_entry(const CPDFField* parent, const char* key, CPDFObj& out);

// The same for many fields: what fields with others under them have of such keys is read once, since their lists of kids take
// long to read.
class CPDFInheritedEntries {
public:
    // Of `field` itself or the nearest above it. `key` is borrowed.
    bool find(const CPDFField* field, const char* key, CPDFObj& out);

    // The field has other entries now.
    void forget(const CPDFField& field) { m_known.erase(&field); }

private:
    // By field, which is borrowed; null where it has no such entry.
    std::unordered_map<const CPDFField*, std::map<std::string_view, CPDFObj>> m_known;
};

// The same for the most characters of a text field; 0 when it inherits no limit.
int32_t inherited_max_length(const CPDFField* parent);
