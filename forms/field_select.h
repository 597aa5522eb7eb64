// The fields that a submit or reset action is about (ISO 32000-2, 12.7.6.2 and 12.7.6.3).
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "core/array.h"
#include "core/growable.h"
#include "core/limits.h"
#include "forms/acro_form.h"
#include "forms/field.h"

// Whether an action with these "Fields" and flags means all fields: it lists none, or bit 0 of the flags makes it ignore
// the list.
inline bool selects_all(const CPDFArray* fields, int flags)
{
    return !fields || (flags & 1) || fields->count == 0;
}

// Finds the fields that the entries of one list name. A long list is searched by an index over the form, made on the
// first need, so the tree must not change meanwhile.
class CPDFFieldFinder {
public:
    // `form` is borrowed; `lookups` is how many entries are to be looked up.
    CPDFFieldFinder(CPDFAcroForm& form, int32_t lookups);

    // The first field in tree order that `entry` designates: a reference by CPDFField::get, a string as the dotted path
    // of its other form. Null when there is none, for any other entry, once it gave up, and when memory runs out.
    CPDFField* find(const CPDFObj& entry);

    // Whether paths were not looked up because they took more work than LIMIT_SELECT_VISITS.
    bool gave_up() const { return m_visits >= LIMIT_SELECT_VISITS; }

private:
    struct ENTRY {
        uint64_t key;      // object number, or hash of the partial name
        size_t place;      // in tree order
        CPDFField* field;  // borrowed from the form
    };
    using Index = CPDFGrowable<ENTRY, 256, 1>;
    using Range = std::pair<const ENTRY*, const ENTRY*>;

    static bool comes_before(const ENTRY& a, const ENTRY& b);

    void build();
    CPDFField* find_ref(const PDF_REF& ref);
    CPDFField* find_path(const char* path);
    Range named(std::string_view name) const;
    CPDFField* find_below(const CPDFField* top, size_t place, const char* path);
    CPDFField* find_last(const char* path);
    const char* rest_below(const CPDFField* field, const char* path);
    bool is_reached(const CPDFField& field, const CPDFField* top, const char* path);
    void add(Index& out, const ENTRY& entry) { m_failed = !out.push(entry) || m_failed; }
    void add_named(Index& out, std::string_view name, const CPDFField* top, size_t place);

    CPDFAcroForm& m_form;  // borrowed
    bool m_few;            // too few lookups for an index
    bool m_built = false;
    bool m_failed = false;  // memory has run out: the index lacks entries
    int64_t m_visits = 0;   // fields looked at on the way along paths
    Index m_refs;           // fields by their own number and those of their widgets
    Index m_names;
};

// Calls `visit(CPDFField&)` for every top-level field when all are meant, and otherwise for the field that each entry of
// the list names, in list order; an entry that names none is passed over, one listed twice comes twice. `visit` covers
// kids itself and does not change the tree. Returns false, and visits none, where the finder gave up
// or memory runs out.
template <typename Visit>
bool for_each_selected_field(CPDFAcroForm& form, const CPDFArray* fields, int flags, Visit&& visit)
{
    if (selects_all(fields, flags)) {
        for (int32_t i = 0; i < form.m_field_cnt; ++i) {
            if (form.m_fields[i])
                visit(*form.m_fields[i]);
        }
        return true;
    }
    CPDFFieldFinder finder(form, fields->count);
    CPDFGrowable<CPDFField*, 256, 1> found;
    for (int32_t i = 0; i < fields->count; ++i) {
        if (!found.push(finder.find(fields->items[i])))
            return false;
    }
    if (finder.gave_up())
        return false;
    for (CPDFField* field : found) {
        if (field)
            visit(*field);
    }
    return true;
}
