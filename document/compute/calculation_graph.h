// Which calculated fields are calculated from which others.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

class CPDFField;

// Fields, all borrowed, in their order of calculation, with the names of fields and groups that each is calculated from.
class CPDFCalculationGraph {
public:
    // Of a field that comes again nothing changes.
    void add(CPDFField& field, const std::vector<std::string>& names);

    // A field that `field` is calculated from and that is calculated from it, directly or through others; itself where
    // it stands among its own sources. Null for none.
    const CPDFField* circle_of(const CPDFField& field);

    // All fields, each behind those that it is calculated from, otherwise as they came. Circles stay as they are.
    std::vector<CPDFField*> sorted();

private:
    struct NODE {
        CPDFField* field;                // borrowed
        std::vector<std::string> names;  // of what it is calculated from
    };

    void link();
    bool leads_to(size_t from, size_t to) const;

    std::vector<NODE> m_nodes;
    std::unordered_map<const CPDFField*, size_t> m_places;
    std::vector<std::vector<size_t>> m_sources;  // of each node, once they are linked
};
