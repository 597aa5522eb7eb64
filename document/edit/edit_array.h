// Changing an array that a dictionary has, wherever it stands.
#pragma once

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

// Calls `edit(CPDFArray&)`, which returns whether it changed anything, for the array under `key` of the dictionary
// `owner`, empty when there is none, and stores it where it stands: as an object of its own or in the dictionary.
template <typename Edit>
PDF_CHANGE_RESULT edit_array(CPDFXRefTable& xref, const PDF_REF& owner, const char* key, Edit&& edit)
{
    const CPDFKeySet key_set(key);
    const VXFailureCheck memory;
    CPDFObj own;
    xref.get_entity(own, owner, &key_set);
    if (!own.dictionary())
        return memory.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : PDF_CHANGE_RESULT::NO_DICTIONARY;
    CPDFObj* entry = own.dict->get_item(key);
    PDF_REF apart = entry && entry->type == PDF_OBJ_REF ? entry->ref : PDF_REF{0, 0};
    CPDFObj list;
    take_obj(&xref, entry, list);
    if (!list.array()) {
        apart = {0, 0};
        if (!list.set_array())
            return PDF_CHANGE_RESULT::NO_MEMORY;
    }
    const bool changed = edit(*list.arr);
    if (memory.failed())
        return PDF_CHANGE_RESULT::NO_MEMORY;
    if (!changed)
        return PDF_CHANGE_RESULT::STORED;
    // As text, a long list would be parsed and written anew with every change.
    constexpr int32_t LONG_LIST = 200;
    const PDF_ENTRY_CHANGE change[] = {{key, &list}};
    if (apart.num == 0 && list.arr->count < LONG_LIST)
        return xref.change_entries(owner, change);
    own.free();
    if (apart.num == 0)
        xref.get_entity(own, owner);
    CPDFObj* slot = own.dictionary() ? own.dict->value_slot(key) : nullptr;
    if (slot)
        slot->take(list);
    if (!memory.failed())
        xref.take_changed(slot ? owner : apart, slot ? own : list);
    return memory.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : PDF_CHANGE_RESULT::STORED;
}

// Removes the references to the objects for which `is_gone(num)` holds; returns whether there were any.
template <typename IsGone>
bool remove_references(CPDFArray& list, IsGone&& is_gone)
{
    const int32_t before = list.count;
    for (int32_t i = list.count - 1; i >= 0; --i) {
        if (list.items[i].type == PDF_OBJ_REF && is_gone(list.items[i].ref.num))
            list.remove_obj(i);
    }
    return list.count != before;
}
