// The one way in which a field changes its dictionary in the document.
#pragma once

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "forms/field.h"

// Hands a private copy of the field's dictionary to `edit(CPDFDictionary&)`, which returns whether it changed anything, and
// stores the copy then. Nothing happens without the dictionary, nothing is stored when memory runs out.
template <typename Edit>
void edit_dictionary(const CPDFField& field, Edit&& edit)
{
    const VXFailureCheck check;
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref);
    CPDFDictionary* dict = own.dictionary();
    if (dict && edit(*dict) && !check.failed())
        field.m_xref->store_changed(field.m_ref, own);
}
