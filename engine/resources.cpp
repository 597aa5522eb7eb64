#include "engine/resources.h"

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

std::string base_font_of(CPDFXRefTable* xref, const CPDFObj& font)
{
    static constexpr CPDFKeySet KEY_SET{"BaseFont"};
    CPDFObj fetched;
    const CPDFDictionary* dict = font.dictionary();
    if (font.type == PDF_OBJ_REF) {
        xref->get_entity(fetched, font.ref, &KEY_SET);
        dict = fetched.dictionary();
    }
    const CPDFObj* name = dict ? dict->get_item("BaseFont") : nullptr;
    return name && name->name_text() ? name->name : "";
}

}  // namespace

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
    CPDFObj fetched;
    if (m_ref.num)
        xref->get_entity(fetched, m_ref);
    const CPDFDictionary* dict = m_ref.num ? fetched.dictionary() : m_dict.dictionary();
    for (int32_t i = 0; dict && i < dict->count; ++i) {
        const CPDFEntryView named_view(xref, &dict->items[i]->value);
        const CPDFDictionary* named = named_view->dictionary();
        const std::string category = dict->items[i]->key();
        for (int32_t k = 0; named && k < named->count; ++k) {
            const CPDFObj& value = named->items[k]->value;
            const PDF_REF ref = value.type == PDF_OBJ_REF ? value.ref : PDF_REF{0, 0};
            const bool font = category == CPDFDictionary::sm_tag_font;
            m_resources.push_back({category, named->items[k]->key(), ref, font ? base_font_of(xref, value) : ""});
        }
    }
}

void CPDFResources::unload_resource()
{
    m_resources.clear();
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
        fonts.dict->set_item(name, &value);
        const PDF_ENTRY_CHANGE fonts_change[] = {{CPDFDictionary::sm_tag_font, &fonts}};
        result = check.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : xref->change_entries(m_ref, fonts_change);
    }
    if (result != PDF_CHANGE_RESULT::STORED)
        return 0;
    std::erase_if(m_resources, [name](const PDF_RESOURCE& at) {
        return at.category == CPDFDictionary::sm_tag_font && at.name == name;
    });
    m_resources.push_back({CPDFDictionary::sm_tag_font, name, font, base_font_of(xref, value)});
    return 1;
}

const PDF_RESOURCE* CPDFResources::find(const char* category, const char* name) const
{
    for (const PDF_RESOURCE& resource : m_resources) {
        if (resource.category == category && resource.name == name)
            return &resource;
    }
    return nullptr;
}
