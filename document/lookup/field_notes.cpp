#include "document/lookup/field_notes.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"

namespace {

constexpr CPDFKeySet NOTE_KEYS{"TU", "TM", "Rect"};
constexpr CPDFKeySet WATCH_KEYS(FIELD_KEYS, "TU", "TM", "Rect");
constexpr CPDFKeySet PAGE_KEY{"P"};

void take_entry(CPDFDictionary& dict, const char* key, CPDFObj& out)
{
    if (CPDFObj* entry = dict.get_item(key))
        out.take(*entry);
}

}  // namespace

const CPDFKeySet& CPDFFieldNotes::keys() const
{
    return WATCH_KEYS;
}

// References stay what they are until somebody asks: many fields may share what they lead to.
void CPDFFieldNotes::see(const PDF_REF& ref, CPDFDictionary& dict)
{
    NOTE& note = m_notes[ref.num];
    take_entry(dict, "TU", note.label);
    take_entry(dict, "TM", note.mapping_name);
    PDF_BOX box = {};
    if (read_box(m_xref, dict.get_item("Rect"), box))
        note.rect = box;
}

const CPDFFieldNotes::NOTE& CPDFFieldNotes::note_of(const PDF_REF& ref)
{
    if (const auto found = m_notes.find(ref.num); found != m_notes.end())
        return found->second;
    CPDFObj own;
    m_xref.get_entity(own, ref, &NOTE_KEYS);
    if (CPDFDictionary* dict = own.dictionary())
        see(ref, *dict);
    return m_notes[ref.num];
}

std::optional<std::string> CPDFFieldNotes::text_of(const CPDFObj& entry)
{
    const CPDFEntryView text(&m_xref, &entry);
    return text->type == PDF_OBJ_STRING ? std::optional(utf8_of(text->str)) : std::nullopt;
}

std::optional<std::string> CPDFFieldNotes::label_of(const PDF_REF& field)
{
    return text_of(note_of(field).label);
}

std::optional<std::string> CPDFFieldNotes::mapping_name_of(const PDF_REF& field)
{
    return text_of(note_of(field).mapping_name);
}

std::optional<PDF_BOX> CPDFFieldNotes::rect_of(const PDF_REF& widget)
{
    return note_of(widget).rect;
}

int32_t CPDFFieldNotes::page_of(const PDF_REF& widget, const CPDFPageMap& pages)
{
    if (const int32_t page = pages.page_of_annotation(widget.num))
        return page;
    CPDFObj own;
    m_xref.get_entity(own, widget, &PAGE_KEY);
    const CPDFObj* page = own.dictionary() ? own.dict->get_item("P") : nullptr;
    return page && page->type == PDF_OBJ_REF ? pages.page_of(page->ref.num) : 0;
}
