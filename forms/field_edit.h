// The one way in which a field changes its dictionary in the document.
#pragma once

#include <initializer_list>

#include "core/alloc.h"
#include "core/xref_table.h"
#include "forms/field.h"

// Stores a new version of the field's own dictionary with these entries. Nothing happens without the dictionary,
// nothing is stored when memory ran out since `memory` was made.
inline PDF_CHANGE_RESULT change_entries(const CPDFField& field, std::initializer_list<PDF_ENTRY_CHANGE> changes,
                                        const VXFailureCheck& memory = {})
{
    if (memory.failed())
        return PDF_CHANGE_RESULT::NO_MEMORY;
    return field.m_xref->change_entries(field.m_ref, {changes.begin(), changes.size()});
}

// The same for setters that report nothing: what can't be stored stays in memory only.
inline void store_entries(const CPDFField& field, std::initializer_list<PDF_ENTRY_CHANGE> changes,
                          const VXFailureCheck& memory = {})
{
    static_cast<void>(change_entries(field, changes, memory));
}
