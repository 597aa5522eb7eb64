// Name trees and number trees as lists (ISO 32000-2, 7.9.6 and 7.9.7).
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "core/object.h"

// One leaf: its name as stored, or its number.
struct TREE_ENTRY {
    std::string name;
    int32_t number = 0;
    CPDFObj value;
};

// Appends the leaves of a tree, whose root is `entry`, in their order. Nodes that are no dictionaries, too deep or seen before
// are left out.
void read_name_tree(CPDFXRefTable& xref, const CPDFObj* entry, std::list<TREE_ENTRY>& out);
void read_number_tree(CPDFXRefTable& xref, const CPDFObj* entry, std::list<TREE_ENTRY>& out);

// Makes `out` a tree of one node with these leaves, which are sorted and whose values are taken.
void make_name_tree(std::list<TREE_ENTRY>& entries, CPDFObj& out);
void make_number_tree(std::list<TREE_ENTRY>& entries, CPDFObj& out);
