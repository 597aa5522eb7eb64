// Number trees (ISO 32000-2, 7.9.7), changed where they stand.
#pragma once

#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

#include "core/object.h"
#include "core/xref_table.h"

// The tree under one entry of a dictionary. Damaged nodes hold nothing; depth is bounded.
class CPDFNumberTree {
public:
    // Both borrowed; the tree is the entry `key` of the dictionary `owner`.
    CPDFNumberTree(CPDFXRefTable& xref, const PDF_REF& owner, const char* key);

    // The objects that these numbers lead to; values that are held directly are left out.
    std::unordered_map<int32_t, PDF_REF> find(const std::set<int32_t>& numbers);

    // The highest number; -1 of an empty tree.
    int32_t last();

    // Adds `first` and the numbers after it, higher than all that are there, for these. Makes the tree where there is none.
    PDF_CHANGE_RESULT append(int32_t first, const std::vector<PDF_REF>& values);

    // Takes numbers out, with the nodes that are empty then.
    PDF_CHANGE_RESULT remove(const std::set<int32_t>& numbers);

private:
    struct WALK;

    // The nodes from the root to the last leaf. Empty without a tree.
    std::vector<PDF_REF> path_to_last();
    PDF_REF settle_root();
    void find_in(const PDF_REF& ref, WALK& walk, std::unordered_map<int32_t, PDF_REF>& found);
    PDF_CHANGE_RESULT remove_in(const PDF_REF& ref, WALK& walk, bool& empty);
    std::vector<PDF_REF> kids_with(const CPDFObj& node, WALK& walk);
    PDF_CHANGE_RESULT set_limits(const PDF_REF& node);

    CPDFXRefTable& m_xref;  // borrowed
    PDF_REF m_owner;
    const char* m_key;  // borrowed
};
