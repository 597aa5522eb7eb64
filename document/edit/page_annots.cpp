#include "document/edit/page_annots.h"

#include "document/edit/edit_array.h"
#include "document/lookup/page_map.h"

namespace {

constexpr const char* ANNOTS = "Annots";

// The object that is the list of the page; number 0 when the page holds it directly or has none.
PDF_REF list_object(CPDFXRefTable& xref, const PDF_REF& page)
{
    constexpr CPDFKeySet KEYS{ANNOTS};
    CPDFObj own;
    xref.get_entity(own, page, &KEYS);
    const CPDFObj* list = own.dictionary() ? own.dict->get_item(ANNOTS) : nullptr;
    return list && list->type == PDF_OBJ_REF ? list->ref : PDF_REF{0, 0};
}

}  // namespace

void CPDFAnnotationLists::count()
{
    std::unordered_set<uint32_t> seen;  // a page may be listed twice
    for (int32_t i = 1; i <= m_pages.page_count(); ++i) {
        if (const PDF_REF& page = m_pages.page_ref(i); seen.insert(page.num).second)
            ++m_users[list_object(m_xref, page).num];
    }
}

PDF_CHANGE_RESULT CPDFAnnotationLists::make_own(int32_t page)
{
    const PDF_REF own = m_pages.page_ref(page);
    const PDF_REF list = list_object(m_xref, own);
    if (!list.num)
        return PDF_CHANGE_RESULT::STORED;
    if (m_users.empty())
        count();
    CPDFObj copy;
    if (m_users[list.num] > 1)
        m_xref.get_entity(copy, list);
    if (!copy.array())
        return PDF_CHANGE_RESULT::STORED;
    std::vector<PDF_REF> listed;
    for (int32_t i = 0; i < copy.arr->count; ++i) {
        if (copy.arr->items[i].type == PDF_OBJ_REF)
            listed.push_back(copy.arr->items[i].ref);
    }
    m_pages.add_annotations(listed, page);
    --m_users[list.num];
    const PDF_ENTRY_CHANGE change[] = {{ANNOTS, &copy}};
    return m_xref.change_entries(own, change);
}

PDF_CHANGE_RESULT add_annotations(CPDFXRefTable& xref, const PDF_REF& page, const std::vector<PDF_REF>& annotations)
{
    return edit_array(xref, page, ANNOTS, [&](CPDFArray& list) {
        for (const PDF_REF& annotation : annotations)
            list.append_ref(annotation);
        return true;
    });
}

PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page, const std::unordered_set<uint32_t>& gone)
{
    const auto is_gone = [&gone](uint32_t num) { return gone.count(num) > 0; };
    return edit_array(xref, page, ANNOTS, [&](CPDFArray& list) { return remove_references(list, is_gone); });
}
