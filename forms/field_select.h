// The fields that a submit or reset action is about (ISO 32000-2, 12.7.6.2 and 12.7.6.3).
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "core/array.h"
#include "core/growable.h"
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
    // of its other form. Null when there is none, for any other entry, and when the finder gives up.
    CPDFField* find(const CPDFObj& entry);

    // Whether something was not looked up, for want of memory or beyond LIMIT_SELECT_VISITS.
    bool gave_up() const { return m_gave_up; }

private:
    struct ENTRY {
        uint64_t key;      // object number, or hash of the partial name
        size_t place;      // in tree order
        size_t end;        // of names: the place behind the last field below
        CPDFField* field;  // borrowed from the form
    };
    using Index = CPDFGrowable<ENTRY, 256, 1>;
    using Range = std::span<const ENTRY>;

    static bool comes_before(const ENTRY& a, const ENTRY& b);

    void build();
    void add_tree(CPDFField& field);
    void add(Index& out, const ENTRY& entry) { m_gave_up = !out.push(entry) || m_gave_up; }
    CPDFField* find_ref(const PDF_REF& ref);
    CPDFField* find_path(const char* path);
    CPDFField* find_named(const char* path);
    Range named(std::string_view name) const;
    void find_first(Range fields, const char* path, const ENTRY*& best);

    CPDFAcroForm& m_form;  // borrowed
    bool m_few;            // too few lookups for an index
    bool m_built = false;
    bool m_gave_up = false;
    int64_t m_visits = 0;  // fields looked at by find_named
    size_t m_places = 0;
    Index m_refs;  // fields by their own number and those of their widgets
    Index m_names;
};

// Calls `visit(CPDFField&)` for every top-level field when all are meant, and otherwise for the field that each entry of
// the list names, in list order; an entry that names none is passed over, one listed twice comes twice. `visit` covers
// kids itself and does not change the tree. Returns whether every entry could be looked up.
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
    for (int32_t i = 0; i < fields->count; ++i) {
        if (CPDFField* field = finder.find(fields->items[i]))
            visit(*field);
    }
    return !finder.gave_up();
}
