#include "document/lookup/page_map.h"

#include <algorithm>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"

namespace {

constexpr CPDFKeySet PAGE_KEYS{"Type", "Kids", "Annots"};

bool comes_before(const PDF_PAGE_ANNOTATION& a, const PDF_PAGE_ANNOTATION& b)
{
    return a.num != b.num ? a.num < b.num : a.page < b.page;
}

// A well-made document lists every object once. Beyond that, arrays are no longer read: many objects that are references
// to one long array would have it read once for each of them.
int64_t most_entries(const CPDFXRefTable& xref)
{
    constexpr int64_t SLACK = 4096;
    return 2 * static_cast<int64_t>(xref.entry_count()) + SLACK;
}

}  // namespace

PDF_REF annotation_ref(CPDFXRefTable& xref, uint32_t num)
{
    const PDF_XREF_ENTRY* entry = xref.entry_of(num);
    return {num, entry && entry->type != PDF_XREF_IN_STREAM ? entry->gen : 0};
}

void CPDFPageMap::load(CPDFXRefTable& xref, const CPDFObj& root)
{
    m_xref = &xref;
    xref.read_all_sections();
    m_entries_left = most_entries(xref);
    m_pages.clear();
    m_annotations.clear();
    m_seen.clear();
    const CPDFDictionary* catalog = root.dictionary();
    if (const CPDFObj* pages = catalog ? catalog->get_item("Pages") : nullptr)
        visit(*pages, 0);
    std::sort(m_annotations.begin(), m_annotations.end(), comes_before);
    drop_repeated();
    m_xref = nullptr;
}

void CPDFPageMap::drop_repeated()
{
    const auto same = [](const PDF_PAGE_ANNOTATION& a, const PDF_PAGE_ANNOTATION& b) {
        return a.num == b.num && a.page == b.page;
    };
    m_annotations.erase(std::unique(m_annotations.begin(), m_annotations.end(), same), m_annotations.end());
}

void CPDFPageMap::visit(const CPDFObj& entry, int depth)
{
    if (depth > LIMIT_PAGE_DEPTH)
        return;
    if (entry.type == PDF_OBJ_REF && !first_visit(entry.ref.num)) {
        // A page may be listed twice, and then is two pages; its annotations stay with the first.
        if (m_seen[entry.ref.num] > 0)
            m_pages.push_back(entry.ref);
        return;
    }
    CPDFObj fetched;
    if (entry.type == PDF_OBJ_REF)
        m_xref->get_entity(fetched, entry.ref, &PAGE_KEYS);
    const CPDFDictionary* node = (entry.type == PDF_OBJ_REF ? fetched : entry).dictionary();
    if (!node)
        return;
    const CPDFEntryView type(m_xref, node->get_item("Type"));
    const CPDFObj* kids = node->get_item("Kids");
    if (kids && !type->is_name("Page"))
        for_each_once(kids, [&](const CPDFObj& kid) { visit(kid, depth + 1); });
    else if (!type->is_name("Pages"))
        add_page(*node, entry.type == PDF_OBJ_REF ? entry.ref : PDF_REF{0, 0});
}

void CPDFPageMap::add_page(const CPDFDictionary& page, const PDF_REF& ref)
{
    m_pages.push_back(ref);
    if (ref.num)
        m_seen[ref.num] = page_count();
    for_each_once(page.get_item("Annots"), [this](const CPDFObj& annotation) {
        if (annotation.type == PDF_OBJ_REF)
            m_annotations.push_back({annotation.ref.num, page_count()});
    });
}

// Calls `visit` with each element of the array behind an entry; with none when it is no array, was read before, or the
// limit is used up.
template <typename Visit>
void CPDFPageMap::for_each_once(const CPDFObj* entry, const Visit& visit)
{
    if (!entry || m_entries_left <= 0 || (entry->type == PDF_OBJ_REF && !first_visit(entry->ref.num)))
        return;
    const CPDFEntryView list(m_xref, entry);
    const CPDFArray* array = list->array();
    m_entries_left -= array ? array->count + 1 : 0;
    for (int32_t i = 0; array && i < array->count; ++i)
        visit(array->items[i]);
}

int32_t CPDFPageMap::page_of(uint32_t num) const
{
    const auto found = m_seen.find(num);
    return found == m_seen.end() ? 0 : found->second;
}

std::span<const PDF_PAGE_ANNOTATION> CPDFPageMap::annotations_of(uint32_t num) const
{
    const auto first =
        std::lower_bound(m_annotations.begin(), m_annotations.end(), PDF_PAGE_ANNOTATION{num, 0}, comes_before);
    auto end = first;
    while (end != m_annotations.end() && end->num == num)
        ++end;
    return std::span(m_annotations)
        .subspan(static_cast<size_t>(first - m_annotations.begin()), static_cast<size_t>(end - first));
}

int32_t CPDFPageMap::page_of_annotation(uint32_t num) const
{
    const std::span<const PDF_PAGE_ANNOTATION> found = annotations_of(num);
    return found.empty() ? 0 : found.front().page;
}

void CPDFPageMap::add_annotations(const std::vector<PDF_REF>& annotations, int32_t page)
{
    const auto before = static_cast<std::ptrdiff_t>(m_annotations.size());
    for (const PDF_REF& annotation : annotations)
        m_annotations.push_back({annotation.num, page});
    std::sort(m_annotations.begin() + before, m_annotations.end(), comes_before);
    std::inplace_merge(m_annotations.begin(), m_annotations.begin() + before, m_annotations.end(), comes_before);
    drop_repeated();
}

void CPDFPageMap::remove_annotations(const std::unordered_set<uint32_t>& gone)
{
    std::erase_if(m_annotations, [&gone](const PDF_PAGE_ANNOTATION& at) { return gone.contains(at.num); });
}
