#include "document/edit/page_annots.h"

#include <algorithm>

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

PDF_CHANGE_RESULT own_annotations(CPDFXRefTable& xref, CPDFPageMap& pages, int32_t page)
{
    const PDF_REF own = pages.page_ref(page);
    const PDF_REF list = list_object(xref, own);
    bool shared = false;
    for (int32_t i = 1; i <= pages.page_count() && list.num && !shared; ++i) {
        const PDF_REF& other = pages.page_ref(i);
        shared = other.num && other.num != own.num && list_object(xref, other).num == list.num;
    }
    if (!shared)
        return PDF_CHANGE_RESULT::STORED;
    CPDFObj copy;
    xref.get_entity(copy, list);
    if (!copy.array())
        return PDF_CHANGE_RESULT::STORED;
    for (int32_t i = 0; i < copy.arr->count; ++i) {
        const CPDFObj& entry = copy.arr->items[i];
        const auto is_here = [page](const PDF_PAGE_ANNOTATION& at) { return at.page == page; };
        if (entry.type != PDF_OBJ_REF)
            continue;
        const auto known = pages.annotations_of(entry.ref.num);
        if (std::none_of(known.begin(), known.end(), is_here))
            pages.add_annotation(entry.ref.num, page);
    }
    const PDF_ENTRY_CHANGE change[] = {{ANNOTS, &copy}};
    return xref.change_entries(own, change);
}

PDF_CHANGE_RESULT add_annotation(CPDFXRefTable& xref, const PDF_REF& page, const PDF_REF& annotation)
{
    return edit_array(xref, page, ANNOTS, [&](CPDFArray& list) {
        list.append_ref(annotation);
        return true;
    });
}

PDF_CHANGE_RESULT remove_annotations(CPDFXRefTable& xref, const PDF_REF& page, const std::unordered_set<uint32_t>& gone)
{
    const auto is_gone = [&gone](uint32_t num) { return gone.count(num) > 0; };
    return edit_array(xref, page, ANNOTS, [&](CPDFArray& list) { return remove_references(list, is_gone); });
}
