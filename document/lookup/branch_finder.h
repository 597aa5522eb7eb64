// Finds single fields without loading the whole form.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/object.h"

class CPDFAcroForm;
class CPDFField;
class CPDFVisitSet;
class CPDFXRefTable;

// Walks down the dictionaries by name and loads only the branch that leads to a field: its ancestors alone and the field
// with its own subtree. Owns the branches until they are grafted into the form.
class CPDFBranchFinder {
public:
    CPDFBranchFinder();
    ~CPDFBranchFinder();
    CPDFBranchFinder(const CPDFBranchFinder&) = delete;
    CPDFBranchFinder& operator=(const CPDFBranchFinder&) = delete;

    // The first field in tree order with this full name, as stored, in UTF-8; null when there is none, or when only the
    // whole form can tell, as where "Kids" and "Parent" contradict each other. `form` is the catalog's form entry. The
    // same field is found as the same object.
    CPDFField* find(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name);

    // How many fields have this full name, 2 for more and where only the whole form can tell. Loads none.
    int count(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name);

    // Puts the fields that were found into `form`, which has been loaded since, in place of those that it has of the same
    // dictionaries: pointers to them stay good. The form owns them then; what it has no place for stays here.
    void graft(CPDFAcroForm& form);

private:
    bool start(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name);
    bool descend(CPDFXRefTable& xref, const CPDFObj* list, std::string_view name, int depth);
    bool enter(CPDFXRefTable& xref, const PDF_REF& ref, std::string_view name, int depth);
    CPDFField* load_branch(CPDFXRefTable& xref);
    void graft(CPDFField** fields, int32_t count);
    CPDFField*& place_of(const CPDFField& field);

    bool m_in_doubt = false;  // the walk met what only the whole form can tell
    int m_passed = 0;         // fields of the name that the walk met
    int m_wanted = 1;         // the one of them at which it ends
    std::unique_ptr<CPDFVisitSet> m_visits;
    std::vector<PDF_REF> m_path;                       // from the top field down to the one found
    std::vector<CPDFField*> m_tops;                    // owned, with the fields under them
    std::unordered_map<uint32_t, CPDFField*> m_found;  // borrowed from m_tops; those found and those under them
};
