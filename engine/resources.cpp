#include "engine/resources.h"

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

CPDFResources::~CPDFResources() = default;

void CPDFResources::bind(CPDFXRefTable*, const CPDFObj* entry)
{
    unbind();
    if (!entry)
        return;
    if (entry->type == PDF_OBJ_REF)
        m_ref = entry->ref;
    else
        m_dict.copy_from(entry);
}

void CPDFResources::unbind()
{
    m_ref = {0, 0};
    m_dict.free();
}

void CPDFResources::load_resource(CPDFXRefTable* xref, int)
{
    unload_resource();
    const VXFailureCheck check;
    if (m_ref.num)
        xref->get_entity(m_resources, m_ref);
    else
        m_resources.copy_from(&m_dict);
    const CPDFDictionary* dict = m_resources.dictionary();
    for (int32_t i = 0; dict && i < dict->count; ++i) {
        CPDFObj category;
        take_obj(xref, &dict->items[i]->value, category);
        dict->items[i]->value.take(category);
    }
    if (!dict || check.failed())
        m_resources.free();
}

void CPDFResources::unload_resource()
{
    m_resources.free();
}

int CPDFResources::append_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font)
{
    if (!xref || m_ref.num == 0)
        return 0;
    static constexpr CPDFKeySet KEY_SET{"Font"};
    const VXFailureCheck check;
    CPDFObj own;
    xref->get_entity(own, m_ref, &KEY_SET);
    if (!own.dictionary())
        return 0;
    CPDFObj value;
    value.set_ref(font);
    const PDF_ENTRY_CHANGE change[] = {{name, &value}};
    CPDFObj* entry = own.dict->get_item(CPDFDictionary::sm_tag_font);
    // Fonts that are an object of their own may be shared with pages, and are meant to be.
    const bool apart = entry && entry->type == PDF_OBJ_REF;
    PDF_CHANGE_RESULT result = apart ? xref->change_entries(entry->ref, change) : PDF_CHANGE_RESULT::NO_DICTIONARY;
    if (result == PDF_CHANGE_RESULT::NO_DICTIONARY) {
        CPDFObj fonts;
        if (entry && entry->dictionary())
            fonts.take(*entry);
        else
            fonts.set_dict();
        if (fonts.dictionary())
            fonts.dict->set_item(name, &value);
        const PDF_ENTRY_CHANGE fonts_change[] = {{CPDFDictionary::sm_tag_font, &fonts}};
        result = check.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : xref->change_entries(m_ref, fonts_change);
    }
    if (result != PDF_CHANGE_RESULT::STORED)
        return 0;
    note_font(name, value);
    return 1;
}

// Adds a font to what is loaded; without memory it is found after the next load_resource.
void CPDFResources::note_font(const char* name, const CPDFObj& font)
{
    if (!m_resources.dictionary())
        m_resources.set_dict();
    CPDFObj* fonts = m_resources.dictionary() ? m_resources.dict->value_slot(CPDFDictionary::sm_tag_font) : nullptr;
    if (fonts && !fonts->dictionary())
        fonts->set_dict();
    if (fonts && fonts->dictionary())
        fonts->dict->set_item(name, &font);
}

const CPDFObj* CPDFResources::find(const char* category, const char* name) const
{
    const CPDFObj* named = m_resources.dictionary() ? m_resources.dict->get_item(category) : nullptr;
    return named && named->dictionary() ? named->dict->get_item(name) : nullptr;
}
