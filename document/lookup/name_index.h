// Finds fields by their full names.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CPDFAcroForm;
class CPDFField;

// A hash index over the fields that have a name of their own. It holds hashes, not names, so it stays small whatever the
// names are; a field found is compared with the name it has now.
class CPDFNameIndex {
public:
    // The field with this full name in UTF-8, compared with the names as stored, else with the names without index
    // suffixes; the first in tree order where several have it, null when none has. The form is walked on the first
    // need.
    CPDFField* find(CPDFAcroForm& form, std::string_view name);

    // How many fields have this full name as stored.
    size_t count(CPDFAcroForm& form, std::string_view name);

    // Takes in `field` and all under it, or forgets them, under the names that they have at the time of the call. Where
    // a name then stands several times, a field taken in comes last.
    void add(CPDFField& field);
    void remove(CPDFField& field);

    // Forgets the form: its fields were renamed, added or removed.
    void clear();

private:
    struct ENTRY {
        uint64_t hash;
        CPDFField* field;  // borrowed from the form
    };
    using NameOf = std::string (*)(const CPDFField& field);

    static void insert(std::vector<ENTRY>& entries, CPDFField& field, NameOf name_of);
    static void erase(std::vector<ENTRY>& entries, CPDFField& field, NameOf name_of);
    static void build(std::vector<ENTRY>& entries, CPDFAcroForm& form, NameOf name_of);
    static CPDFField* look_up(const std::vector<ENTRY>& entries, std::string_view name, NameOf name_of);

    std::vector<ENTRY> m_stored;         // sorted by hash, fields of one hash in tree order
    std::vector<ENTRY> m_without_index;  // the same for the other form of the names
    bool m_has_stored = false;
    bool m_has_without_index = false;
};
