#include "document/merge/entry_tree.h"

#include <unordered_set>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"

namespace {

constexpr const char* NAMES = "Names";
constexpr const char* NUMBERS = "Nums";

class TreeReader {
public:
    TreeReader(CPDFXRefTable& xref, const char* leaves, std::list<TREE_ENTRY>& out)
        : m_xref(xref), m_leaves(leaves), m_out(out)
    {
    }

    void read(const CPDFObj& entry, int depth)
    {
        if (depth > LIMIT_PAGE_DEPTH || !first_visit(entry))
            return;
        const CPDFEntryView node_entry(&m_xref, &entry);
        const CPDFDictionary* node = node_entry->dictionary();
        if (!node)
            return;
        if (const CPDFObj* leaves = node->get_item(m_leaves))
            read_leaves(*leaves);
        const CPDFEntryView kids(&m_xref, node->get_item("Kids"));
        for (int32_t i = 0; kids->array() && i < kids->arr->count; ++i)
            read(kids->arr->items[i], depth + 1);
    }

private:
    bool first_visit(const CPDFObj& entry) { return entry.type != PDF_OBJ_REF || m_seen.insert(entry.ref.num).second; }

    void read_leaves(const CPDFObj& entry)
    {
        if (!first_visit(entry))
            return;
        const CPDFEntryView list(&m_xref, &entry);
        for (int32_t i = 0; list->array() && i + 1 < list->arr->count; i += 2) {
            TREE_ENTRY& leaf = m_out.emplace_back();
            PDF_String name;
            m_xref.read_obj_string(name, &list->arr->items[i]);
            if (name.len > 0)
                leaf.name.assign(reinterpret_cast<const char*>(name.buf), static_cast<size_t>(name.len));
            name.release();
            leaf.number = resolve_integer(&m_xref, &list->arr->items[i]);
            leaf.value.copy_from(&list->arr->items[i + 1]);
        }
    }

    CPDFXRefTable& m_xref;  // borrowed from the caller, as the following
    const char* m_leaves;
    std::list<TREE_ENTRY>& m_out;
    std::unordered_set<uint32_t> m_seen;
};

// Calls `append_key(CPDFArray&, const TREE_ENTRY&)` before each value.
template <typename AppendKey>
void make_tree(const char* leaves, std::list<TREE_ENTRY>& entries, CPDFObj& out, const AppendKey& append_key)
{
    CPDFDictionary* node = out.set_dict();
    CPDFObj* slot = node ? node->value_slot(leaves) : nullptr;
    CPDFArray* list = slot ? slot->set_array() : nullptr;
    for (TREE_ENTRY& entry : entries) {
        if (!list)
            return;
        append_key(*list, entry);
        if (CPDFObj* value = list->append())
            value->take(entry.value);
    }
}

}  // namespace

void read_name_tree(CPDFXRefTable& xref, const CPDFObj* entry, std::list<TREE_ENTRY>& out)
{
    if (entry)
        TreeReader(xref, NAMES, out).read(*entry, 0);
}

void read_number_tree(CPDFXRefTable& xref, const CPDFObj* entry, std::list<TREE_ENTRY>& out)
{
    if (entry)
        TreeReader(xref, NUMBERS, out).read(*entry, 0);
}

void make_name_tree(std::list<TREE_ENTRY>& entries, CPDFObj& out)
{
    entries.sort([](const TREE_ENTRY& a, const TREE_ENTRY& b) { return a.name < b.name; });
    make_tree(NAMES, entries, out, [](CPDFArray& list, const TREE_ENTRY& entry) {
        list.append_str(entry.name.data(), static_cast<int>(entry.name.size()));
    });
}

void make_number_tree(std::list<TREE_ENTRY>& entries, CPDFObj& out)
{
    entries.sort([](const TREE_ENTRY& a, const TREE_ENTRY& b) { return a.number < b.number; });
    make_tree(NUMBERS, entries, out, [](CPDFArray& list, const TREE_ENTRY& entry) { list.append_int(entry.number); });
}
