#include <cstring>

#include "core/array.h"
#include "core/dictionary.h"
#include "document/merge/entry_tree.h"
#include "document/merge/free_names.h"
#include "document/merge/merge_internal.h"

namespace {

constexpr const char* NAMES = "Names";
constexpr const char* DESTINATIONS = "Dests";

std::string free_name(const std::string& name, CPDFFreeNames& names, RENAMED& renamed)
{
    std::string free = names.take(name);
    if (free != name)
        renamed[name] = free;
    return free;
}

void merge_name_tree(MERGE& merge, const char* key, const CPDFObj& other, CPDFDictionary& names)
{
    std::list<TREE_ENTRY> entries;
    std::list<TREE_ENTRY> added;
    CPDFFreeNames taken;
    RENAMED renamed;
    read_name_tree(merge.into.xref, names.get_item(key), entries);
    read_name_tree(merge.from.xref, &other, added);
    for (const TREE_ENTRY& entry : entries)
        taken.add(entry.name);
    for (TREE_ENTRY& entry : added)
        entry.name = free_name(entry.name, taken, renamed);
    if (std::strcmp(key, DESTINATIONS) == 0)
        merge.destinations = std::move(renamed);
    for (TREE_ENTRY& entry : added)
        merge.copier.renumber(entry.value);
    entries.splice(entries.end(), added);
    CPDFObj tree;
    make_name_tree(entries, tree);
    put_apart(merge.into.xref, names, key, tree);
}

// Destinations under names, as they were before PDF 1.2.
void merge_old_destinations(MERGE& merge)
{
    CPDFObj added;
    const CPDFDictionary* other = copy_dictionary(merge.from.xref, merge.other, DESTINATIONS, added);
    CPDFObj all;
    CPDFDictionary* dict = copy_dictionary(merge.into.xref, merge.catalog, DESTINATIONS, all);
    if (!other || !dict || other->count == 0)
        return;
    CPDFFreeNames taken;
    for (int32_t i = 0; i < dict->count; ++i)
        taken.add(dict->items[i]->key());
    for (int32_t i = 0; i < other->count; ++i) {
        merge.copier.renumber(other->items[i]->value);
        const std::string name = free_name(other->items[i]->key(), taken, merge.name_destinations);
        dict->set_item(name.c_str(), &other->items[i]->value);
    }
    put_apart(merge.into.xref, merge.catalog, DESTINATIONS, all);
}

void rename_destination(const MERGE& merge, CPDFDictionary& dict, const char* key)
{
    const CPDFObj* entry = dict.get_item(key);
    const bool is_name = entry && entry->name_text();
    if (!entry || (!is_name && (entry->type != PDF_OBJ_STRING || entry->str.len <= 0)))
        return;
    const RENAMED& renamed = is_name ? merge.name_destinations : merge.destinations;
    const auto found = renamed.find(
        is_name ? std::string(entry->name)
                : std::string(reinterpret_cast<const char*>(entry->str.buf), static_cast<size_t>(entry->str.len)));
    if (found == renamed.end())
        return;
    if (is_name)
        dict.set_item_name(key, found->second.c_str());
    else
        dict.set_item_str(key, found->second.data(), static_cast<int>(found->second.size()));
}

}  // namespace

void merge_names(MERGE& merge)
{
    merge_old_destinations(merge);
    CPDFObj other;
    const CPDFDictionary* added = copy_dictionary(merge.from.xref, merge.other, NAMES, other);
    CPDFObj all;
    CPDFDictionary* names = copy_dictionary(merge.into.xref, merge.catalog, NAMES, all);
    if (!added || !names || added->count == 0)
        return;
    // What stands in the trees may lead to destinations.
    if (const CPDFObj* destinations = added->get_item(DESTINATIONS))
        merge_name_tree(merge, DESTINATIONS, *destinations, *names);
    for (int32_t i = 0; i < added->count; ++i) {
        if (std::strcmp(added->items[i]->key(), DESTINATIONS) != 0)
            merge_name_tree(merge, added->items[i]->key(), added->items[i]->value, *names);
    }
    put_apart(merge.into.xref, merge.catalog, NAMES, all);
}

void adapt_dictionary(const MERGE& merge, CPDFDictionary& dict)
{
    for (const char* key : {"StructParent", "StructParents", "SE"})
        dict.remove_item(key);
    rename_destination(merge, dict, "Dest");
    const CPDFObj* action = dict.get_item("S");
    if (action && action->is_name("GoTo")) {
        dict.remove_item("SD");
        rename_destination(merge, dict, "D");
    }
    const CPDFObj* appearance = merge.fonts.empty() ? nullptr : dict.get_item("DA");
    if (appearance && appearance->type == PDF_OBJ_STRING && appearance->str.len > 0) {
        const std::string text(reinterpret_cast<const char*>(appearance->str.buf),
                               static_cast<size_t>(appearance->str.len));
        if (const std::string renamed = renamed_fonts(merge.fonts, text); renamed != text)
            dict.set_item_str("DA", renamed.data(), static_cast<int>(renamed.size()));
    }
}
