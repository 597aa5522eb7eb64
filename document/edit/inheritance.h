// What a field has from the fields above it, when it leaves them.
#pragma once

#include <list>
#include <vector>

#include "core/object.h"
#include "core/xref_table.h"

class CPDFField;

struct INHERITANCE {
    std::list<CPDFObj> values;
    std::vector<PDF_ENTRY_CHANGE> changes;  // of the field's own dictionary; they borrow the values
};

// Collects what `field` has from the fields above it, and what keeps it from taking over what `parent`, null for none, has.
void collect_inherited(const CPDFField& field, const CPDFField* parent, INHERITANCE& out);
