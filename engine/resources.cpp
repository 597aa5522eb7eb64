#include "engine/resources.h"

#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

std::string base_font_of(CPDFXRefTable* xref, const CPDFObj& font)
{
    static constexpr const char* KEYS[] = {"BaseFont"};
    static constexpr CPDFKeySet KEY_SET(KEYS);
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
        CPDFObj scratch;
        const CPDFDictionary* named = view_obj(xref, &dict->items[i]->value, scratch)->dictionary();
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

const PDF_RESOURCE* CPDFResources::find(const char* category, const char* name) const
{
    for (const PDF_RESOURCE& resource : m_resources) {
        if (resource.category == category && resource.name == name)
            return &resource;
    }
    return nullptr;
}
