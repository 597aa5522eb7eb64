#include <algorithm>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"
#include "document/lookup/page_map.h"
#include "document/merge/entry_tree.h"
#include "document/merge/merge_internal.h"

namespace {

constexpr const char* PAGES = "Pages";
constexpr const char* LABELS = "PageLabels";
constexpr const char* OUTLINES = "Outlines";
constexpr const char* LAYERS = "OCProperties";

// Whether pages under this node have nothing from it.
bool hands_nothing_down(const CPDFDictionary& node)
{
    constexpr const char* INHERITED[] = {"Resources", "MediaBox", "CropBox", "Rotate"};
    return std::ranges::none_of(INHERITED, [&node](const char* key) { return node.get_item(key) != nullptr; });
}

// The node that is the root of all pages from now on: the one that is there, or a new one above it where its other pages
// would have boxes or resources from it.
PDF_REF common_root(MERGE& merge)
{
    CPDFXRefTable& xref = merge.into.xref;
    const CPDFObj* entry = merge.catalog.get_item(PAGES);
    if (entry && entry->type != PDF_OBJ_REF) {
        CPDFObj direct;
        direct.copy_from(entry);
        put_apart(xref, merge.catalog, PAGES, direct);
        entry = merge.catalog.get_item(PAGES);
    }
    const CPDFEntryView root(&xref, entry);
    const CPDFDictionary* node = root->dictionary();
    if (node && node->get_item("Kids") && hands_nothing_down(*node))
        return entry->ref;
    const PDF_REF above =
        new_object(xref, node ? "<</Type/Pages/Kids[" + ref_syntax(entry->ref) + "]>>" : "<</Type/Pages/Kids[]>>");
    CPDFObj parent;
    parent.set_ref(above);
    const PDF_ENTRY_CHANGE change[] = {{CPDFDictionary::sm_tag_parent, &parent}};
    if (!above.num || (node && xref.change_entries(entry->ref, change) != PDF_CHANGE_RESULT::STORED))
        return {0, 0};
    merge.catalog.set_item_ref(PAGES, above);
    return above;
}

// What `key` of an outline is as a reference; number 0 for nothing.
PDF_REF reference_in(const CPDFDictionary& dict, const char* key)
{
    const CPDFObj* entry = dict.get_item(key);
    return entry && entry->type == PDF_OBJ_REF ? entry->ref : PDF_REF{0, 0};
}

// A page that says nothing of its label is numbered from 1.
void complete_labels(std::list<TREE_ENTRY>& labels)
{
    const auto is_first = [](const TREE_ENTRY& entry) { return entry.number == 0; };
    if (std::ranges::any_of(labels, is_first))
        return;
    TREE_ENTRY& first = labels.emplace_front();
    parse_syntax("<</S/D>>", first.value);
}

void append_all(MERGE& merge, CPDFDictionary& into, const CPDFDictionary& from, const char* key)
{
    CPDFObj all;
    CPDFObj added;
    CPDFArray* list = copy_array(merge.into.xref, into, key, all);
    const CPDFArray* more = copy_array(merge.from.xref, from, key, added);
    if (!list || !more || more->count == 0)
        return;
    for (int32_t i = 0; i < more->count; ++i) {
        merge.copier.renumber(more->items[i]);
        if (CPDFObj* slot = list->append())
            slot->take(more->items[i]);
    }
    into.set_item(key, &all);
}

}  // namespace

CPDFDictionary* copy_dictionary(CPDFXRefTable& xref, const CPDFDictionary& owner, const char* key, CPDFObj& out)
{
    resolve_obj(&xref, owner.get_item(key), out);
    return out.dictionary() ? out.dict : out.set_dict();
}

CPDFArray* copy_array(CPDFXRefTable& xref, const CPDFDictionary& owner, const char* key, CPDFObj& out)
{
    resolve_obj(&xref, owner.get_item(key), out);
    return out.array() ? out.arr : out.set_array();
}

CPDFStatus merge_pages(MERGE& merge)
{
    const CPDFObj* entry = merge.other.get_item(PAGES);
    const int32_t added = merge.from.pages.page_count();
    if (!entry || entry->type != PDF_OBJ_REF || added == 0)
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "the document has no pages that could be appended");
    const PDF_REF root = common_root(merge);
    const PDF_REF pages = merge.copier.copied(entry->ref.num);
    CPDFObj node;
    if (root.num)
        merge.into.xref.get_entity(node, root);
    if (!node.dictionary())
        return no_memory_to_edit();
    CPDFObj kids;
    if (CPDFArray* list = copy_array(merge.into.xref, *node.dict, "Kids", kids))
        list->append_ref(pages);
    node.dict->set_item("Kids", &kids);
    node.dict->set_item_int("Count", merge.into.pages.page_count() + added);
    merge.copier.entries_of(entry->ref.num).set_item_ref(CPDFDictionary::sm_tag_parent, root);
    return merge.into.xref.take_changed(root, node) ? CPDFStatus() : no_memory_to_edit();
}

void merge_page_labels(MERGE& merge)
{
    std::list<TREE_ENTRY> labels;
    std::list<TREE_ENTRY> added;
    read_number_tree(merge.into.xref, merge.catalog.get_item(LABELS), labels);
    read_number_tree(merge.from.xref, merge.other.get_item(LABELS), added);
    if (labels.empty() && added.empty())
        return;
    complete_labels(labels);
    complete_labels(added);
    const int32_t before = merge.into.pages.page_count();
    std::erase_if(labels, [before](const TREE_ENTRY& entry) { return entry.number < 0 || entry.number >= before; });
    const int32_t pages = merge.from.pages.page_count();
    std::erase_if(added, [pages](const TREE_ENTRY& entry) { return entry.number < 0 || entry.number >= pages; });
    for (TREE_ENTRY& entry : added) {
        entry.number += before;
        merge.copier.renumber(entry.value);
    }
    labels.splice(labels.end(), added);
    CPDFObj tree;
    make_number_tree(labels, tree);
    put_apart(merge.into.xref, merge.catalog, LABELS, tree);
}

void merge_outlines(MERGE& merge)
{
    CPDFXRefTable& xref = merge.into.xref;
    const CPDFObj* entry = merge.other.get_item(OUTLINES);
    const CPDFEntryView other(&merge.from.xref, entry);
    const PDF_REF first = other->dictionary() ? reference_in(*other->dict, "First") : PDF_REF{0, 0};
    const PDF_REF last = other->dictionary() ? reference_in(*other->dict, "Last") : PDF_REF{0, 0};
    if (!first.num || !last.num || entry->type != PDF_OBJ_REF)
        return;
    const PDF_REF root = reference_in(merge.catalog, OUTLINES);
    CPDFObj own;
    if (root.num)
        xref.get_entity(own, root);
    const PDF_REF end = own.dictionary() ? reference_in(*own.dict, "Last") : PDF_REF{0, 0};
    if (!end.num) {
        merge.catalog.set_item_ref(OUTLINES, merge.copier.copied(entry->ref.num));
        return;
    }
    // References to the root, "Parent" above all, lead to the one that is there.
    merge.copier.place(entry->ref.num, root);
    CPDFObj next;
    next.set_ref(merge.copier.copied(first.num));
    const PDF_ENTRY_CHANGE change[] = {{"Next", &next}};
    if (xref.change_entries(end, change) != PDF_CHANGE_RESULT::STORED)
        return;
    merge.copier.entries_of(first.num).set_item_ref("Prev", end);
    own.dict->set_item_ref("Last", merge.copier.copied(last.num));
    const auto shown = [](CPDFXRefTable& from, const CPDFDictionary& dict) {
        return std::max(0, resolve_integer(&from, dict.get_item("Count")));
    };
    own.dict->set_item_int("Count",
                           static_cast<int>(std::min<int64_t>(INT32_MAX, int64_t{shown(xref, *own.dict)} +
                                                                             shown(merge.from.xref, *other->dict))));
    xref.take_changed(root, own);
}

// Which layers there are, and which of them are hidden (ISO 32000-2, 8.11.4).
void merge_layers(MERGE& merge)
{
    if (!merge.other.get_item(LAYERS))
        return;
    CPDFObj all;
    CPDFObj added;
    CPDFObj own_default;
    CPDFObj other_default;
    CPDFDictionary* layers = copy_dictionary(merge.into.xref, merge.catalog, LAYERS, all);
    const CPDFDictionary* other = copy_dictionary(merge.from.xref, merge.other, LAYERS, added);
    CPDFDictionary* own = layers ? copy_dictionary(merge.into.xref, *layers, "D", own_default) : nullptr;
    const CPDFDictionary* theirs = other ? copy_dictionary(merge.from.xref, *other, "D", other_default) : nullptr;
    if (!own || !theirs)
        return;
    append_all(merge, *layers, *other, "OCGs");
    for (const char* key : {"ON", "OFF", "Order", "AS", "RBGroups", "Locked"})
        append_all(merge, *own, *theirs, key);
    layers->set_item("D", &own_default);
    merge.catalog.set_item(LAYERS, &all);
}
