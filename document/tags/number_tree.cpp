#include "document/tags/number_tree.h"

#include <optional>
#include <unordered_set>

#include "document/edit/edit.h"
#include "document/edit/edit_array.h"
#include "document/edit/new_object.h"

namespace {

constexpr CPDFKeySet NODE_KEYS{"Kids", "Limits", "Nums"};
constexpr size_t DEEPEST = 32;

struct LIMITS {
    int32_t first = 0;
    int32_t last = -1;
};

// What a node says that it holds; a node without "Limits" is the root, or damaged.
std::optional<LIMITS> limits_of(CPDFXRefTable& xref, const CPDFObj* entry)
{
    const CPDFEntryView node(&xref, entry);
    const CPDFEntryView limits(&xref, node->dictionary() ? node->dict->get_item("Limits") : nullptr);
    if (!limits->array() || limits->arr->count != 2)
        return {};
    return LIMITS{resolve_integer(&xref, limits->arr->at(0)), resolve_integer(&xref, limits->arr->at(1))};
}

// Takes the pairs of these numbers out of "Nums"; whether there were any.
bool remove_pairs(CPDFXRefTable& xref, CPDFArray& pairs, const std::set<int32_t>& numbers)
{
    const int32_t before = pairs.count;
    for (int32_t i = before / 2 * 2 - 2; i >= 0; i -= 2) {
        if (numbers.contains(resolve_integer(&xref, pairs.at(i)))) {
            pairs.remove_obj(i + 1);
            pairs.remove_obj(i);
        }
    }
    return pairs.count != before;
}

}  // namespace

CPDFNumberTree::CPDFNumberTree(CPDFXRefTable& xref, const PDF_REF& owner, const char* key)
    : m_xref(xref), m_owner(owner), m_key(key)
{
}

// One way through the tree.
struct CPDFNumberTree::WALK {
    const std::set<int32_t>& numbers;
    std::unordered_set<uint32_t> seen;
    size_t depth = 0;
};

std::vector<PDF_REF> CPDFNumberTree::path_to_last()
{
    std::vector<PDF_REF> path;
    for (PDF_REF at = settle_root(); at.num && path.size() < DEEPEST;) {
        path.push_back(at);
        CPDFObj node;
        m_xref.get_entity(node, at, &NODE_KEYS);
        const CPDFEntryView kids(&m_xref, node.dictionary() ? node.dict->get_item("Kids") : nullptr);
        const CPDFObj* last = kids->array() && kids->arr->count > 0 ? kids->arr->at(kids->arr->count - 1) : nullptr;
        at = last && last->type == PDF_OBJ_REF ? last->ref : PDF_REF{0, 0};
    }
    return path;
}

// The kids that may hold one of the numbers and were not seen yet.
std::vector<PDF_REF> CPDFNumberTree::kids_with(const CPDFObj& node, WALK& walk)
{
    std::vector<PDF_REF> refs;
    const CPDFEntryView kids(&m_xref, node.dictionary() ? node.dict->get_item("Kids") : nullptr);
    for (int32_t i = 0; kids->array() && i < kids->arr->count && walk.depth < DEEPEST; ++i) {
        const CPDFObj& kid = kids->arr->items[i];
        const std::optional<LIMITS> limits = limits_of(m_xref, &kid);
        const auto first = limits ? walk.numbers.lower_bound(limits->first) : walk.numbers.end();
        if (first != walk.numbers.end() && *first <= limits->last && kid.type == PDF_OBJ_REF &&
            walk.seen.insert(kid.ref.num).second)
            refs.push_back(kid.ref);
    }
    return refs;
}

std::unordered_map<int32_t, PDF_REF> CPDFNumberTree::find(const std::set<int32_t>& numbers)
{
    std::unordered_map<int32_t, PDF_REF> found;
    WALK walk{numbers, {}};
    if (const PDF_REF root = numbers.empty() ? PDF_REF{0, 0} : settle_root(); root.num)
        find_in(root, walk, found);
    return found;
}

void CPDFNumberTree::find_in(const PDF_REF& ref, WALK& walk, std::unordered_map<int32_t, PDF_REF>& found)
{
    CPDFObj node;
    m_xref.get_entity(node, ref, &NODE_KEYS);
    const CPDFEntryView pairs(&m_xref, node.dictionary() ? node.dict->get_item("Nums") : nullptr);
    for (int32_t i = 0; pairs->array() && i + 1 < pairs->arr->count; i += 2) {
        const CPDFObj* value = pairs->arr->at(i + 1);
        const int32_t number = resolve_integer(&m_xref, pairs->arr->at(i));
        if (value->type == PDF_OBJ_REF && walk.numbers.contains(number))
            found.emplace(number, value->ref);
    }
    ++walk.depth;
    for (const PDF_REF& kid : kids_with(node, walk))
        find_in(kid, walk, found);
    --walk.depth;
}

int32_t CPDFNumberTree::last()
{
    const std::vector<PDF_REF> path = path_to_last();
    CPDFObj leaf;
    if (!path.empty())
        m_xref.get_entity(leaf, path.back(), &NODE_KEYS);
    const CPDFEntryView pairs(&m_xref, leaf.dictionary() ? leaf.dict->get_item("Nums") : nullptr);
    return pairs->array() && pairs->arr->count >= 2 ? resolve_integer(&m_xref, pairs->arr->at(pairs->arr->count - 2))
                                                    : -1;
}

// The root. One that its owner holds directly becomes an object of its own. What memory does not allow shows as no tree.
PDF_REF CPDFNumberTree::settle_root()
{
    const CPDFKeySet keys(m_key);
    CPDFObj owner;
    m_xref.get_entity(owner, m_owner, &keys);
    const CPDFObj* entry = owner.dictionary() ? owner.dict->get_item(m_key) : nullptr;
    if (!entry || !entry->dictionary())
        return entry && entry->type == PDF_OBJ_REF ? entry->ref : PDF_REF{0, 0};
    CPDFObj root;
    root.set_ref({m_xref.new_obj_num(), 0});
    m_xref.store_changed(root.ref, *entry);
    const PDF_ENTRY_CHANGE change[] = {{m_key, &root}};
    const bool stored = m_xref.change_entries(m_owner, change) == PDF_CHANGE_RESULT::STORED;
    return stored ? root.ref : PDF_REF{0, 0};
}

// "Limits" from what the node holds.
PDF_CHANGE_RESULT CPDFNumberTree::set_limits(const PDF_REF& node)
{
    CPDFObj own;
    m_xref.get_entity(own, node, &NODE_KEYS);
    if (!own.dictionary())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    const CPDFEntryView kids(&m_xref, own.dict->get_item("Kids"));
    const CPDFEntryView pairs(&m_xref, own.dict->get_item("Nums"));
    LIMITS limits;
    if (kids->array() && kids->arr->count > 0) {
        limits.first = limits_of(m_xref, kids->arr->at(0)).value_or(LIMITS()).first;
        limits.last = limits_of(m_xref, kids->arr->at(kids->arr->count - 1)).value_or(LIMITS()).last;
    } else if (pairs->array() && pairs->arr->count >= 2) {
        limits.first = resolve_integer(&m_xref, pairs->arr->at(0));
        limits.last = resolve_integer(&m_xref, pairs->arr->at(pairs->arr->count / 2 * 2 - 2));
    }
    CPDFObj value;
    if (CPDFArray* both_ends = value.set_array()) {
        both_ends->append_int(limits.first);
        both_ends->append_int(limits.last);
    }
    const PDF_ENTRY_CHANGE change[] = {{"Limits", &value}};
    return m_xref.change_entries(node, change);
}

PDF_CHANGE_RESULT CPDFNumberTree::append(int32_t first, const std::vector<PDF_REF>& values)
{
    std::vector<PDF_REF> path = path_to_last();
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    if (path.empty()) {
        CPDFObj root;
        root.set_ref(new_object(m_xref, "<</Nums[]>>"));
        const PDF_ENTRY_CHANGE change[] = {{m_key, &root}};
        result = root.ref.num ? m_xref.change_entries(m_owner, change) : PDF_CHANGE_RESULT::NO_MEMORY;
        path.push_back(root.ref);
    }
    if (result != PDF_CHANGE_RESULT::STORED)
        return result;
    result = edit_array(m_xref, path.back(), "Nums", [&](CPDFArray& pairs) {
        for (size_t i = 0; i < values.size(); ++i) {
            pairs.append_int(first + static_cast<int32_t>(i));
            pairs.append_ref(values[i]);
        }
        return true;
    });
    for (size_t i = path.size() - 1; i > 0; --i)
        result = both(result, set_limits(path[i]));
    return result;
}

PDF_CHANGE_RESULT CPDFNumberTree::remove(const std::set<int32_t>& numbers)
{
    WALK walk{numbers, {}};
    bool empty = false;
    const PDF_REF root = numbers.empty() ? PDF_REF{0, 0} : settle_root();
    return root.num ? remove_in(root, walk, empty) : PDF_CHANGE_RESULT::STORED;
}

PDF_CHANGE_RESULT CPDFNumberTree::remove_in(const PDF_REF& ref, WALK& walk, bool& empty)
{
    CPDFObj node;
    m_xref.get_entity(node, ref, &NODE_KEYS);
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    std::unordered_set<uint32_t> gone;
    ++walk.depth;
    const std::vector<PDF_REF> kids = kids_with(node, walk);
    for (const PDF_REF& kid : kids) {
        bool kid_empty = false;
        result = both(result, remove_in(kid, walk, kid_empty));
        if (kid_empty)
            gone.insert(kid.num);
    }
    --walk.depth;
    bool changed = !kids.empty();
    if (!gone.empty())
        result = both(result, edit_array(m_xref, ref, "Kids", [&](CPDFArray& list) {
                          remove_references(list, [&](uint32_t num) { return gone.contains(num); });
                          empty = list.count == 0;
                          return true;
                      }));
    if (node.dictionary() && node.dict->get_item("Nums"))
        result = both(result, edit_array(m_xref, ref, "Nums", [&](CPDFArray& pairs) {
                          const bool cut = remove_pairs(m_xref, pairs, walk.numbers);
                          changed = changed || cut;
                          empty = pairs.count == 0;
                          return cut;
                      }));
    return changed && !empty && walk.depth > 0 ? both(result, set_limits(ref)) : result;
}
