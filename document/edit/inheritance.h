// What a field has from the fields above it, for one that is to stand elsewhere.
#pragma once

#include <list>
#include <vector>

#include "core/entry_change.h"
#include "core/object.h"

class CPDFField;

// The changes that keep a field as it is. They borrow the values.
struct INHERITANCE {
    std::list<CPDFObj> values;
    std::vector<PDF_ENTRY_CHANGE> changes;
};

// Collects what `field` has from the fields above it, and what keeps it from taking over what `parent` has, under which it
// is to stand; null for the top.
void collect_inherited(const CPDFField& field, const CPDFField* parent, INHERITANCE& out);
