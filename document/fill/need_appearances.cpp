#include "document/fill/need_appearances.h"

#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

constexpr const char* KEY = "NeedAppearances";
constexpr const char* KEYS[] = {KEY};
constexpr CPDFKeySet KEY_SET(KEYS);

bool is_raised(CPDFXRefTable& xref, const CPDFDictionary& form)
{
    CPDFObj scratch;
    const CPDFObj* flag = view_obj(&xref, form.get_item(KEY), scratch);
    return flag->type == PDF_OBJ_BOOL && flag->ival;
}

}  // namespace

void set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref)
{
    CPDFObj* entry = root.dict->get_item(CPDFDictionary::sm_tag_acro_form);
    if (!entry)
        return;
    CPDFObj yes;
    yes.set_bool(1);
    if (entry->type == PDF_OBJ_REF) {
        CPDFObj form;
        xref.get_entity(form, entry->ref, &KEY_SET);
        const PDF_ENTRY_CHANGE change[] = {{KEY, &yes}};
        if (form.dictionary() && !is_raised(xref, *form.dict))
            static_cast<void>(xref.change_entries(entry->ref, change));
    } else if (entry->dictionary() && !is_raised(xref, *entry->dict)) {
        entry->dict->set_item(KEY, &yes);
        xref.store_changed(root_ref, root);
    }
}
