#include "document/look/page_paint.h"

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"

CPDFPagePaint::CPDFPagePaint(CPDFXRefTable& xref, const CPDFDictionary& page) : m_xref(xref), m_page(page) {}

// The page's own resources, or those of the nearest node above it that has some.
bool CPDFPagePaint::copy_resources(CPDFObj& out, CPDFDictionary*& xobjects)
{
    constexpr CPDFKeySet KEYS{"Resources", "Parent"};
    CPDFObj node;
    const CPDFDictionary* at = &m_page;
    for (int depth = 0; at && depth < LIMIT_PAGE_DEPTH; ++depth) {
        if (const CPDFObj* entry = at->get_item("Resources")) {
            resolve_obj(&m_xref, entry, out);
            break;
        }
        const CPDFObj* parent = at->get_item(CPDFDictionary::sm_tag_parent);
        const PDF_REF above = parent && parent->type == PDF_OBJ_REF ? parent->ref : PDF_REF{0, 0};
        node.free();
        m_xref.get_entity(node, above, &KEYS);
        at = node.dictionary();
    }
    if (!out.dictionary())
        out.set_dict();
    CPDFObj* slot = out.dictionary() ? out.dict->value_slot("XObject") : nullptr;
    if (!slot)
        return false;
    CPDFObj list;
    resolve_obj(&m_xref, slot, list);
    slot->take(list);
    if (!slot->dictionary())
        slot->set_dict();
    xobjects = slot->dictionary();
    return xobjects != nullptr;
}

std::string CPDFPagePaint::name_of(const PDF_REF& xobject)
{
    std::string& name = m_names[xobject.num];
    if (!name.empty())
        return name;
    size_t number = m_names.size();
    do
        name = "Fw" + std::to_string(number++);
    while (m_xobjects->get_item(name.c_str()));
    m_xobjects->set_item_ref(name.c_str(), xobject);
    return name;
}

void CPDFPagePaint::draw(const PDF_REF& xobject, const PDF_MATRIX& at)
{
    if (!m_xobjects && !copy_resources(m_resources, m_xobjects))
        return;
    m_content += "q ";
    for (const double number : at)
        m_content += number_syntax(number, 6) + ' ';
    m_content += "cm /" + name_of(xobject) + " Do Q\n";
}

// What the page shows is kept between a "q" and a "Q": its graphics state may be left changed at its end.
bool CPDFPagePaint::finish(const PDF_REF& save_state, CPDFObj& contents, CPDFObj& resources)
{
    const PDF_REF drawing = new_stream(m_xref, "", "\nQ\n" + m_content);
    if (!drawing.num || !save_state.num || !m_xobjects)
        return false;
    const VXFailureCheck memory;
    const CPDFObj* before = m_page.get_item("Contents");
    const CPDFEntryView list(&m_xref, before);
    CPDFArray* parts = contents.set_array();
    if (!parts)
        return false;
    parts->append_ref(save_state);
    if (list->array()) {
        for (int32_t i = 0; i < list->arr->count; ++i) {
            if (list->arr->items[i].type == PDF_OBJ_REF)
                parts->append_ref(list->arr->items[i].ref);
        }
    } else if (before && before->type == PDF_OBJ_REF) {
        parts->append_ref(before->ref);
    }
    parts->append_ref(drawing);
    resources.take(m_resources);
    m_xobjects = nullptr;
    return !memory.failed();
}
