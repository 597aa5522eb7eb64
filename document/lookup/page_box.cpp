#include "document/lookup/page_box.h"

#include <algorithm>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"

namespace {

constexpr PDF_BOX LETTER = {0, 0, 612, 792};

constexpr CPDFKeySet BOX_KEYS{"MediaBox", "CropBox", "Rotate", "Parent"};

bool read_number(CPDFXRefTable& xref, const CPDFObj& entry, double& number)
{
    const CPDFEntryView value(&xref, &entry);
    if (value->type == PDF_OBJ_INT)
        number = value->ival;
    else if (value->type == PDF_OBJ_REAL)
        number = static_cast<double>(value->fval) / static_cast<double>(VXFIX_ONE);
    else
        return false;
    return true;
}

PDF_BOX intersection(const PDF_BOX& a, const PDF_BOX& b)
{
    return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

// What is known of a page on the way up its tree; the nearest entry counts.
struct INHERITED {
    PDF_BOX media = {};
    PDF_BOX crop = {};
    int32_t rotate = 0;
    bool has_rotate = false;

    void take(CPDFXRefTable& xref, const CPDFDictionary& node)
    {
        if (media.is_empty())
            read_box(xref, node.get_item("MediaBox"), media);
        if (crop.is_empty())
            read_box(xref, node.get_item("CropBox"), crop);
        const CPDFObj* turn = node.get_item("Rotate");
        if (turn && !has_rotate) {
            has_rotate = true;
            rotate = read_rotation(xref, turn);
        }
    }
};

}  // namespace

bool read_box(CPDFXRefTable& xref, const CPDFObj* entry, PDF_BOX& box)
{
    const CPDFEntryView view(&xref, entry);
    const CPDFArray* array = view->array();
    double corner[4];
    if (!array || array->count != 4)
        return false;
    for (int i = 0; i < 4; ++i) {
        if (!read_number(xref, array->items[i], corner[i]))
            return false;
    }
    const auto [x0, x1] = std::minmax(corner[0], corner[2]);
    const auto [y0, y1] = std::minmax(corner[1], corner[3]);
    box = {x0, y0, x1, y1};
    return true;
}

PDF_BOX widget_box(CPDFXRefTable& xref, const PDF_REF& widget)
{
    constexpr CPDFKeySet KEYS{"Rect"};
    CPDFObj own;
    PDF_BOX box = {};
    xref.get_entity(own, widget, &KEYS);
    if (own.dictionary())
        read_box(xref, own.dict->get_item("Rect"), box);
    return box;
}

int32_t read_rotation(CPDFXRefTable& xref, const CPDFObj* entry)
{
    const int32_t degrees = entry ? resolve_integer(&xref, entry) % 360 : 0;
    return degrees % 90 == 0 ? (degrees + 360) % 360 : 0;
}

PDF_PAGE_BOX read_page_box(CPDFXRefTable& xref, const CPDFDictionary& page)
{
    INHERITED found;
    found.take(xref, page);
    CPDFObj node;
    const CPDFObj* above = page.get_item(CPDFDictionary::sm_tag_parent);
    for (int depth = 0; above && above->type == PDF_OBJ_REF && depth <= LIMIT_PAGE_DEPTH; ++depth) {
        const PDF_REF ref = above->ref;
        node.free();
        xref.get_entity(node, ref, &BOX_KEYS);
        const CPDFDictionary* dict = node.dictionary();
        if (!dict)
            break;
        found.take(xref, *dict);
        above = dict->get_item(CPDFDictionary::sm_tag_parent);
    }
    const PDF_BOX media = found.media.is_empty() ? LETTER : found.media;
    const PDF_BOX crop = intersection(found.crop, media);
    return {found.crop.is_empty() || crop.is_empty() ? media : crop, found.rotate};
}

PDF_PAGE_BOX read_page_box(CPDFXRefTable& xref, const PDF_REF& page)
{
    CPDFObj own;
    xref.get_entity(own, page, &BOX_KEYS);
    return own.dictionary() ? read_page_box(xref, *own.dict) : PDF_PAGE_BOX{LETTER, 0};
}

const PDF_PAGE_BOX& CPDFPageBoxes::of(CPDFXRefTable& xref, const PDF_REF& page)
{
    const auto known = m_known.find(page.num);
    return known != m_known.end() ? known->second : m_known.emplace(page.num, read_page_box(xref, page)).first->second;
}
