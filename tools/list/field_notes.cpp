#include "tools/list/field_notes.h"

#include <span>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "forms/field.h"

namespace {

constexpr CPDFKeySet NOTE_KEYS{"TU", "TM", "Rect", "P"};

std::optional<std::string> text_of(const CPDFField& field, const CPDFObj* entry)
{
    const CPDFEntryView text(field.m_xref, entry);
    return text->type == PDF_OBJ_STRING ? std::optional(utf8_of(text->str)) : std::nullopt;
}

void add_widget(const CPDFField& field, uint32_t object, const CPDFDictionary* dict, const CPDFPageMap& pages,
                FIELD_NOTES& notes)
{
    LISTED_WIDGET widget = {object, pages.page_of_annotation(object), {}};
    const CPDFObj* page = dict ? dict->get_item("P") : nullptr;
    if (!widget.page && page && page->type == PDF_OBJ_REF)
        widget.page = pages.page_of(page->ref.num);
    PDF_BOX box = {};
    if (dict && read_box(*field.m_xref, dict->get_item("Rect"), box))
        widget.rect = box;
    notes.widgets.push_back(widget);
}

}  // namespace

FIELD_NOTES read_field_notes(const CPDFField& field, const std::vector<PDF_REF>& widgets, const CPDFPageMap& pages)
{
    FIELD_NOTES notes;
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &NOTE_KEYS);
    if (const CPDFDictionary* dict = own.dictionary()) {
        notes.label = text_of(field, dict->get_item("TU"));
        notes.mapping_name = text_of(field, dict->get_item("TM"));
    }
    for (const PDF_REF& widget : widgets) {
        if (widget.num == field.m_ref.num) {
            add_widget(field, widget.num, own.dictionary(), pages, notes);
            continue;
        }
        CPDFObj other;
        field.m_xref->get_entity(other, widget, &NOTE_KEYS);
        add_widget(field, widget.num, other.dictionary(), pages, notes);
    }
    return notes;
}

std::string label_of(const CPDFField& field)
{
    constexpr CPDFKeySet LABEL_KEY{"TU"};
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &LABEL_KEY);
    return text_of(field, own.dictionary() ? own.dict->get_item("TU") : nullptr).value_or("");
}

int32_t page_of_field(const CPDFField& field, const CPDFPageMap& pages)
{
    int32_t page = pages.page_of_annotation(field.m_ref.num);
    for (int32_t i = 0; i < field.m_widget_cnt && !page; ++i)
        page = pages.page_of_annotation(field.m_widgets[i].num);
    for (int32_t i = 0; i < field.m_kid_cnt && !page; ++i) {
        if (field.m_kids[i] && field.m_kids[i]->m_name.len <= 0)
            page = page_of_field(*field.m_kids[i], pages);
    }
    return page;
}
