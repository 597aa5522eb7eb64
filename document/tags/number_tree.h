// Number trees (ISO 32000-2, 7.9.7), changed where they stand.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/object.h"
#include "core/xref_table.h"

// The tree under one entry of a dictionary. Damaged nodes hold nothing; depth is bounded.
class CPDFNumberTree {
public:
    // Both borrowed; the tree is the entry `key` of the dictionary `owner`.
    CPDFNumberTree(CPDFXRefTable& xref, const PDF_REF& owner, const char* key);

    // The object that `number` leads to; object number 0 where it leads to none, or to a value held directly.
    PDF_REF find(int32_t number);

    // The highest number; -1 of an empty tree.
    int32_t last();

    // Adds a number higher than all that are there. Makes the tree where there is none.
    PDF_CHANGE_RESULT append(int32_t number, const PDF_REF& value);

    // Takes a number out, with the nodes that are empty then.
    PDF_CHANGE_RESULT remove(int32_t number);

private:
    // The nodes from the root to the leaf that would hold `number`; the last leaf for none. Empty without a tree.
    std::vector<PDF_REF> path_to(std::optional<int32_t> number);
    void settle_root();
    PDF_CHANGE_RESULT set_limits(const PDF_REF& node);

    CPDFXRefTable& m_xref;  // borrowed
    PDF_REF m_owner;
    const char* m_key;  // borrowed
};
