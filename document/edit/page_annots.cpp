#include "document/edit/page_annots.h"

#include <algorithm>

#include "core/limits.h"
#include "document/edit/edit_array.h"
#include "document/lookup/page_map.h"

namespace {

constexpr const char* BOX_KEYS[] = {"CropBox", "MediaBox", "Parent"};
constexpr CPDFKeySet BOX_KEY_SET(BOX_KEYS);
constexpr const char* ANNOTS = "Annots";

double number_of(CPDFXRefTable& xref, const CPDFObj* entry)
{
    CPDFObj scratch;
    const CPDFObj* number = view_obj(&xref, entry, scratch);
    if (number->type == PDF_OBJ_REAL)
        return static_cast<double>(number->fval) / static_cast<double>(VXFIX_ONE);
    return integer_value(*number);
}

// The corners may be any two that lie opposite.
bool read_box(CPDFXRefTable& xref, const CPDFObj* entry, PDF_RECT& out)
{
    CPDFObj scratch;
    const CPDFArray* corners = view_obj(&xref, entry, scratch)->array();
    if (!corners || corners->count < 4)
        return false;
    double at[4];
    for (int i = 0; i < 4; ++i)
        at[i] = number_of(xref, corners->at(i));
    const auto [left, right] = std::minmax(at[0], at[2]);
    const auto [bottom, top] = std::minmax(at[1], at[3]);
    if (left >= right || bottom >= top)
        return false;
    out = {left, bottom, right - left, top - bottom};
    return true;
}

// The object that is the list of the page; number 0 when the page holds it directly or has none.
PDF_REF list_object(CPDFXRefTable& xref, const PDF_REF& page)
{
    constexpr const char* KEYS[] = {ANNOTS};
    constexpr CPDFKeySet KEY_SET(KEYS);
    CPDFObj own;
    xref.get_entity(own, page, &KEY_SET);
    const CPDFObj* list = own.dictionary() ? own.dict->get_item(ANNOTS) : nullptr;
    return list && list->type == PDF_OBJ_REF ? list->ref : PDF_REF{0, 0};
}

}  // namespace

PDF_RECT page_box(CPDFXRefTable& xref, const PDF_REF& page)
{
    PDF_RECT box = {0, 0, 612, 792};
    bool has_media = false;
    PDF_REF at = page;
    for (int depth = 0; depth < LIMIT_PAGE_DEPTH && at.num; ++depth) {
        CPDFObj node;
        xref.get_entity(node, at, &BOX_KEY_SET);
        if (!node.dictionary())
            break;
        if (read_box(xref, node.dict->get_item("CropBox"), box))
            return box;
        has_media = has_media || read_box(xref, node.dict->get_item("MediaBox"), box);
        const CPDFObj* parent = node.dict->get_item(CPDFDictionary::sm_tag_parent);
        at = parent && parent->type == PDF_OBJ_REF ? parent->ref : PDF_REF{0, 0};
    }
    return box;
}

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
