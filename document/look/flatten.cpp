#include "document/look/flatten.h"

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"
#include "document/look/page_paint.h"
#include "document/lookup/page_box.h"
#include "document/lookup/page_map.h"

namespace {

// Bits of an annotation's "F" (ISO 32000-2, table 167).
constexpr int32_t HIDDEN = 1 << 1;
constexpr int32_t NO_VIEW = 1 << 5;

double number_in(CPDFXRefTable& xref, const CPDFArray& array, int index)
{
    const CPDFEntryView value(&xref, array.at(index));
    return value->type == PDF_OBJ_REAL ? static_cast<double>(value->fval) / static_cast<double>(VXFIX_ONE)
                                       : integer_value(*value);
}

// The stream that the widget shows now; object number 0 when there is none.
PDF_REF shown_stream(CPDFXRefTable& xref, const CPDFDictionary& widget)
{
    const CPDFEntryView appearances(&xref, widget.get_item("AP"));
    const CPDFObj* entry = appearances->dictionary() ? appearances->dict->get_item("N") : nullptr;
    const CPDFEntryView normal(&xref, entry);
    if (const CPDFDictionary* states = normal->dictionary()) {
        const CPDFEntryView state(&xref, widget.get_item("AS"));
        entry = state->name_text() ? states->get_item(state->name_text()) : nullptr;
    }
    return entry && entry->type == PDF_OBJ_REF ? entry->ref : PDF_REF{0, 0};
}

bool has_subtype(CPDFXRefTable& xref, const CPDFDictionary& dict, const char* name)
{
    const CPDFEntryView subtype(&xref, dict.get_item(CPDFDictionary::sm_tag_subtype));
    return subtype->is_name(name);
}

class Flattener {
public:
    Flattener(EDIT_TARGET& target, std::vector<PDF_REF>& gone) : m_target(target), m_xref(target.xref), m_gone(gone) {}

    CPDFStatus run()
    {
        for (int32_t page = 1; page <= m_target.pages.page_count(); ++page) {
            if (CPDFStatus status = flatten_page(page); !status.ok())
                return status;
        }
        return remove_form();
    }

private:
    CPDFStatus flatten_page(int32_t number)
    {
        const PDF_REF ref = m_target.pages.page_ref(number);
        CPDFObj page;
        m_xref.get_entity(page, ref);
        if (!page.dictionary())
            return damaged(number);
        const CPDFEntryView annotations(&m_xref, page.dict->get_item("Annots"));
        const CPDFArray* list = annotations->array();
        CPDFObj rest;
        if (!rest.set_array())
            return no_memory_to_edit();
        CPDFPagePaint paint(m_xref, *page.dict);
        for (int32_t i = 0; list && i < list->count; ++i) {
            const CPDFEntryView annotation(&m_xref, &list->items[i]);
            const CPDFDictionary* widget = annotation->dictionary();
            const bool goes = widget && has_subtype(m_xref, *widget, "Widget");
            if (goes)
                draw(*widget, paint);
            else if (CPDFObj* kept = rest.arr->append())
                kept->copy_from(&list->items[i]);
            if (goes && list->items[i].type == PDF_OBJ_REF)
                m_gone.push_back(list->items[i].ref);
        }
        if (m_memory.failed())
            return no_memory_to_edit();
        return list && rest.arr->count < list->count ? store_page(number, paint, rest) : CPDFStatus();
    }

    void draw(const CPDFDictionary& widget, CPDFPagePaint& paint)
    {
        const PDF_REF ref = shown_stream(m_xref, widget);
        PDF_BOX rect;
        if ((resolve_integer(&m_xref, widget.get_item("F")) & (HIDDEN | NO_VIEW)) || !ref.num ||
            !read_box(m_xref, widget.get_item("Rect"), rect))
            return;
        CPDFObj stream;
        m_xref.get_entity(stream, ref);
        if (stream.type != PDF_OBJ_STREAM)
            return;
        PDF_BOX box;
        PDF_MATRIX matrix = {1, 0, 0, 1, 0, 0};
        const CPDFEntryView entry(&m_xref, stream.stream->dict.get_item("Matrix"));
        for (int i = 0; entry->array() && entry->arr->count == 6 && i < 6; ++i)
            matrix[static_cast<size_t>(i)] = number_in(m_xref, *entry->arr, i);
        if (!read_box(m_xref, stream.stream->dict.get_item("BBox"), box))
            return;
        const auto placement =
            place_appearance({box.x0, box.y0, box.x1, box.y1}, matrix, {rect.x0, rect.y0, rect.x1, rect.y1});
        if (!placement)
            return;
        complete(ref, stream, widget);
        paint.draw(ref, *placement);
    }

    // As an XObject a stream needs what viewers do without in an appearance; and what hides the widget hides it.
    void complete(const PDF_REF& ref, CPDFObj& stream, const CPDFDictionary& widget)
    {
        CPDFDictionary& dict = stream.stream->dict;
        const CPDFObj* layer = widget.get_item("OC");
        const CPDFObj* resources = dict.get_item("Resources") ? nullptr : default_resources();
        const bool is_form = has_subtype(m_xref, dict, "Form");
        if (is_form && !resources && (!layer || dict.get_item("OC")))
            return;
        dict.set_item_name("Subtype", "Form");
        if (resources)
            dict.set_item("Resources", resources);
        if (layer && !dict.get_item("OC"))
            dict.set_item("OC", layer);
        m_xref.store_changed(ref, stream);
    }

    const CPDFObj* default_resources()
    {
        if (m_form.type == PDF_OBJ_NULL)
            resolve_obj(&m_xref, m_target.root.dict->get_item(CPDFDictionary::sm_tag_acro_form), m_form);
        return m_form.dictionary() ? m_form.dict->get_item("DR") : nullptr;
    }

    CPDFStatus store_page(int32_t number, CPDFPagePaint& paint, const CPDFObj& annotations)
    {
        const PDF_REF page = m_target.pages.page_ref(number);
        const CPDFObj* rest = annotations.arr->count ? &annotations : nullptr;
        const PDF_ENTRY_CHANGE list[] = {{"Annots", rest}};
        PDF_CHANGE_RESULT result = m_xref.change_entries(page, list);
        if (result == PDF_CHANGE_RESULT::STORED && !paint.is_empty()) {
            if (!m_save_state.num)
                m_save_state = new_stream(m_xref, "", "q\n");
            CPDFObj contents;
            CPDFObj resources;
            if (!paint.finish(m_save_state, contents, resources))
                return no_memory_to_edit();
            const PDF_ENTRY_CHANGE shown[] = {{"Contents", &contents}, {"Resources", &resources}};
            result = m_xref.change_entries(page, shown);
        }
        if (result == PDF_CHANGE_RESULT::NO_MEMORY || m_memory.failed())
            return no_memory_to_edit();
        return result == PDF_CHANGE_RESULT::STORED ? CPDFStatus() : damaged(number);
    }

    CPDFStatus remove_form()
    {
        const PDF_ENTRY_CHANGE change[] = {{CPDFDictionary::sm_tag_acro_form, nullptr}};
        if (m_xref.change_entries(m_target.root_ref, change) != PDF_CHANGE_RESULT::STORED)
            return no_memory_to_edit();
        m_target.root.dict->remove_item(CPDFDictionary::sm_tag_acro_form);
        return {};
    }

    static CPDFStatus damaged(int32_t page)
    {
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "page " + std::to_string(page) +
                                                         " can't be flattened: it is damaged or no object of its own");
    }

    EDIT_TARGET& m_target;  // borrowed from the caller, as the following
    CPDFXRefTable& m_xref;
    std::vector<PDF_REF>& m_gone;
    VXFailureCheck m_memory;
    CPDFObj m_form;
    PDF_REF m_save_state = {0, 0};
};

}  // namespace

CPDFStatus flatten_form(EDIT_TARGET& target, std::vector<PDF_REF>& gone)
{
    return Flattener(target, gone).run();
}
