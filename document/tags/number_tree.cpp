#include "document/tags/number_tree.h"

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

}  // namespace

CPDFNumberTree::CPDFNumberTree(CPDFXRefTable& xref, const PDF_REF& owner, const char* key)
    : m_xref(xref), m_owner(owner), m_key(key)
{
}

std::vector<PDF_REF> CPDFNumberTree::path_to(std::optional<int32_t> number)
{
    settle_root();
    const CPDFKeySet keys(m_key);
    CPDFObj owner;
    m_xref.get_entity(owner, m_owner, &keys);
    const CPDFObj* at = owner.dictionary() ? owner.dict->get_item(m_key) : nullptr;
    std::vector<PDF_REF> path;
    CPDFObj node;
    CPDFObj next;
    while (at && at->type == PDF_OBJ_REF && path.size() < DEEPEST) {
        path.push_back(at->ref);
        node.free();
        m_xref.get_entity(node, path.back(), &NODE_KEYS);
        const CPDFEntryView kids(&m_xref, node.dictionary() ? node.dict->get_item("Kids") : nullptr);
        at = nullptr;
        if (!kids->array() || kids->arr->count == 0)
            break;
        next.free();
        for (int32_t i = kids->arr->count - 1; i >= 0 && !at; --i) {
            const std::optional<LIMITS> limits = number ? limits_of(m_xref, kids->arr->at(i)) : LIMITS();
            if (!number || (limits && *number >= limits->first && *number <= limits->last)) {
                next.copy_from(kids->arr->at(i));
                at = &next;
            }
        }
    }
    return path;
}

PDF_REF CPDFNumberTree::find(int32_t number)
{
    const std::vector<PDF_REF> path = path_to(number);
    CPDFObj leaf;
    if (!path.empty())
        m_xref.get_entity(leaf, path.back(), &NODE_KEYS);
    const CPDFEntryView pairs(&m_xref, leaf.dictionary() ? leaf.dict->get_item("Nums") : nullptr);
    for (int32_t i = 0; pairs->array() && i + 1 < pairs->arr->count; i += 2) {
        const CPDFObj* value = pairs->arr->at(i + 1);
        if (resolve_integer(&m_xref, pairs->arr->at(i)) == number && value->type == PDF_OBJ_REF)
            return value->ref;
    }
    return {0, 0};
}

int32_t CPDFNumberTree::last()
{
    const std::vector<PDF_REF> path = path_to({});
    CPDFObj leaf;
    if (!path.empty())
        m_xref.get_entity(leaf, path.back(), &NODE_KEYS);
    const CPDFEntryView pairs(&m_xref, leaf.dictionary() ? leaf.dict->get_item("Nums") : nullptr);
    return pairs->array() && pairs->arr->count >= 2 ? resolve_integer(&m_xref, pairs->arr->at(pairs->arr->count - 2))
                                                    : -1;
}

// A root that its owner holds directly becomes an object of its own. What memory does not allow shows as no tree.
void CPDFNumberTree::settle_root()
{
    const CPDFKeySet keys(m_key);
    CPDFObj owner;
    m_xref.get_entity(owner, m_owner, &keys);
    const CPDFObj* entry = owner.dictionary() ? owner.dict->get_item(m_key) : nullptr;
    if (!entry || !entry->dictionary())
        return;
    CPDFObj root;
    root.set_ref({m_xref.new_obj_num(), 0});
    m_xref.store_changed(root.ref, *entry);
    const PDF_ENTRY_CHANGE change[] = {{m_key, &root}};
    (void)m_xref.change_entries(m_owner, change);
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

PDF_CHANGE_RESULT CPDFNumberTree::append(int32_t number, const PDF_REF& value)
{
    std::vector<PDF_REF> path = path_to({});
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
        pairs.append_int(number);
        pairs.append_ref(value);
        return true;
    });
    for (size_t i = path.size() - 1; i > 0; --i)
        result = both(result, set_limits(path[i]));
    return result;
}

PDF_CHANGE_RESULT CPDFNumberTree::remove(int32_t number)
{
    const std::vector<PDF_REF> path = path_to(number);
    if (path.empty())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    bool empty = false;
    PDF_CHANGE_RESULT result = edit_array(m_xref, path.back(), "Nums", [&](CPDFArray& pairs) {
        const int32_t before = pairs.count;
        for (int32_t i = pairs.count / 2 * 2 - 2; i >= 0; i -= 2) {
            if (resolve_integer(&m_xref, pairs.at(i)) == number) {
                pairs.remove_obj(i + 1);
                pairs.remove_obj(i);
            }
        }
        empty = pairs.count == 0;
        return pairs.count != before;
    });
    for (size_t i = path.size() - 1; i > 0; --i) {
        if (!empty) {
            result = both(result, set_limits(path[i]));
            continue;
        }
        result = both(result, edit_array(m_xref, path[i - 1], "Kids", [&](CPDFArray& kids) {
                          const bool gone = remove_references(kids, [&](uint32_t num) { return num == path[i].num; });
                          empty = kids.count == 0;
                          return gone;
                      }));
    }
    return result;
}
