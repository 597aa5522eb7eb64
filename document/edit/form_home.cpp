#include "document/edit/form_home.h"

#include <cstring>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/new_object.h"
#include "engine/resources.h"
#include "forms/acro_form.h"

namespace {

constexpr const char* FORM = "AcroForm";

// The catalog names the form dictionary `form` from now on.
bool name_form(EDIT_TARGET& target, const PDF_REF& form)
{
    CPDFObj entry;
    entry.set_ref(form);
    const PDF_ENTRY_CHANGE change[] = {{FORM, &entry}};
    if (target.xref.change_entries(target.root_ref, change) != PDF_CHANGE_RESULT::STORED)
        return false;
    target.root.dict->set_item_ref(FORM, form);
    return true;
}

bool is_dictionary(CPDFXRefTable& xref, const CPDFObj* entry)
{
    const CPDFEntryView view(&xref, entry);
    return view->dictionary() != nullptr;
}

}  // namespace

CPDFStatus settle_form(EDIT_TARGET& target, std::string (*make_form)(CPDFXRefTable& xref))
{
    const VXFailureCheck memory;
    CPDFObj* entry = target.root.dict->get_item(FORM);
    const bool is_there = is_dictionary(target.xref, entry);
    if (memory.failed())
        return no_memory_to_edit();
    if (is_there && entry->type == PDF_OBJ_REF)
        return {};
    PDF_REF ref = {target.xref.new_obj_num(), 0};
    if (is_there)
        target.xref.store_changed(ref, *entry);
    else
        ref = new_object(target.xref, make_form ? make_form(target.xref) : "<</Fields[]>>");
    if (memory.failed() || !name_form(target, ref))
        return no_memory_to_edit();
    CPDFAcroForm& form = target.form;
    form.m_ref = ref;
    form.m_xref = &target.xref;
    form.m_root = &target.root;
    form.m_root_ref = target.root_ref;
    form.m_loaded = 1;
    return {};
}

CPDFStatus need_font(EDIT_TARGET& target, const char* name, const char* base_font)
{
    CPDFAcroForm& form = target.form;
    if (form.m_res && form.m_res->find("Font", name))
        return {};
    const bool symbols = std::strcmp(base_font, "ZapfDingbats") == 0 || std::strcmp(base_font, "Symbol") == 0;
    const std::string encoding = symbols ? "" : "/Encoding/WinAnsiEncoding";
    const PDF_REF font =
        new_object(target.xref, "<</Type/Font/Subtype/Type1/BaseFont" + name_syntax(base_font) + encoding + ">>");
    const bool done =
        font.num && (form.m_res || form.new_resource(&target.xref)) && form.append_font(&target.xref, name, font);
    return done ? CPDFStatus() : no_memory_to_edit();
}
