#include <memory>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/resources.h"
#include "forms/acro_form.h"

namespace {

constexpr const char* RESOURCES = "DR";
constexpr CPDFKeySet RESOURCES_KEY_SET{RESOURCES};

// Makes `fonts` a dictionary: what `entry` is or refers to, with `font` under `name`.
void build_fonts(CPDFXRefTable* xref, const CPDFObj* entry, const char* name, const PDF_REF& font, CPDFObj& fonts)
{
    resolve_obj(xref, entry, fonts);
    if (fonts.dictionary() || fonts.set_dict())
        fonts.dict->set_item_ref(name, font);
}

}  // namespace

CPDFResources* CPDFAcroForm::new_resource(CPDFXRefTable* xref)
{
    if (m_ref.num == 0)
        return nullptr;
    if (m_res && m_res->m_ref.num)
        return m_res;
    const VXFailureCheck check;
    CPDFObj form;
    xref->get_entity(form, m_ref, &RESOURCES_KEY_SET);
    if (!form.dictionary())
        return m_res;
    CPDFObj resources;
    const CPDFDictionary no_fonts;
    std::unique_ptr<CPDFResources> made(m_res ? nullptr : new CPDFResources);
    if (m_res)
        take_obj(xref, form.dict->get_item(RESOURCES), resources);
    else if (resources.set_dict())
        resources.dict->set_item_dict(CPDFDictionary::sm_tag_font, &no_fonts);
    const PDF_REF ref = {xref->new_obj_num(), 0};
    if (!check.failed())
        xref->take_changed(ref, resources);
    CPDFObj entry;
    entry.set_ref(ref);
    const PDF_ENTRY_CHANGE change[] = {{RESOURCES, &entry}};
    // The form must not name resources that are not there.
    if (check.failed() || xref->change_entries(m_ref, change) != PDF_CHANGE_RESULT::STORED)
        return m_res;
    if (m_res) {
        m_res->m_ref = ref;
    } else {
        m_res = made.release();
        m_res->bind(xref, &entry);
    }
    return m_res;
}

int CPDFAcroForm::append_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font)
{
    if (!m_res)
        return 0;
    if (m_res->append_font(xref, name, font))
        return 1;
    return m_ref.num ? append_own_font(xref, name, font) : append_root_font(xref, name, font);
}

// The form dictionary is an object of its own: "DR" and "Font" become direct in it.
bool CPDFAcroForm::append_own_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font)
{
    const VXFailureCheck check;
    CPDFObj form;
    m_xref->get_entity(form, m_ref, &RESOURCES_KEY_SET);
    if (!form.dictionary())
        return false;
    CPDFObj resources;
    take_obj(xref, form.dict->get_item(RESOURCES), resources);
    if (!resources.dictionary() && !resources.set_dict())
        return false;
    CPDFObj fonts;
    build_fonts(xref, resources.dict->get_item(CPDFDictionary::sm_tag_font), name, font, fonts);
    resources.dict->set_item_dict(CPDFDictionary::sm_tag_font, fonts.dict);
    const PDF_ENTRY_CHANGE change[] = {{RESOURCES, &resources}};
    if (check.failed() || m_xref->change_entries(m_ref, change) != PDF_CHANGE_RESULT::STORED)
        return false;
    rebind_resources(m_xref, &resources);
    return true;
}

// The form dictionary stands in the catalog, where nothing is looked up through references.
bool CPDFAcroForm::append_root_font(CPDFXRefTable* xref, const char* name, const PDF_REF& font)
{
    const VXFailureCheck check;
    CPDFDictionary* root = m_root ? m_root->dictionary() : nullptr;
    CPDFObj* form = root ? root->get_item(CPDFDictionary::sm_tag_acro_form) : nullptr;
    CPDFObj* resources = form && form->dictionary() ? form->dict->get_item(RESOURCES) : nullptr;
    if (!resources || !resources->dictionary())
        return false;
    CPDFObj fonts;
    build_fonts(nullptr, resources->dict->get_item(CPDFDictionary::sm_tag_font), name, font, fonts);
    if (check.failed())
        return false;
    resources->dict->set_item_dict(CPDFDictionary::sm_tag_font, fonts.dict);
    m_xref->store_changed(m_root_ref, *m_root);
    rebind_resources(xref ? xref : m_xref, resources);
    return !check.failed();
}

void CPDFAcroForm::rebind_resources(CPDFXRefTable* xref, const CPDFObj* entry)
{
    m_res->unload_resource();
    m_res->unbind();
    m_res->bind(xref, entry);
    m_res->load_resource(xref, 0);
}
