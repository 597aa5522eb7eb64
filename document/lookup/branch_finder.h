// Finds single fields without loading the whole form.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/object.h"

class CPDFField;
class CPDFVisitSet;
class CPDFXRefTable;

// Walks down the dictionaries by name and loads only the branch that leads to a field: its ancestors alone and the field
// with its own subtree. Owns the branches.
class CPDFBranchFinder {
public:
    CPDFBranchFinder();
    ~CPDFBranchFinder();
    CPDFBranchFinder(const CPDFBranchFinder&) = delete;
    CPDFBranchFinder& operator=(const CPDFBranchFinder&) = delete;

    // The first field in tree order with this full name, as stored, in UTF-8; null when there is none, or when only the
    // whole form can tell, as where "Kids" and "Parent" contradict each other. `form` is the catalog's form entry. The
    // same field is found as the same object, which lives as long as this does.
    CPDFField* find(CPDFXRefTable& xref, const CPDFObj* form, std::string_view name);

    // The field of this dictionary that was found before, or null.
    CPDFField* known(const PDF_REF& ref) const;

private:
    bool descend(CPDFXRefTable& xref, const CPDFObj* list, std::string_view name, int depth);
    bool enter(CPDFXRefTable& xref, const PDF_REF& ref, std::string_view name, int depth);
    CPDFField* load_branch(CPDFXRefTable& xref);

    bool m_in_doubt = false;  // the walk met what only the whole form can tell
    std::unique_ptr<CPDFVisitSet> m_visits;
    std::vector<PDF_REF> m_path;  // from the top field down to the one found
    std::vector<std::unique_ptr<CPDFField>> m_tops;
    std::unordered_map<uint32_t, CPDFField*> m_found;  // borrowed from m_tops, by object number
};
