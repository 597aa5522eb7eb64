#include "document/need_appearances.h"

#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

constexpr const char* KEY = "NeedAppearances";

// False when the flag is set already.
bool raise_flag(CPDFXRefTable& xref, CPDFDictionary& form)
{
    CPDFObj scratch;
    const CPDFObj* flag = view_obj(&xref, form.get_item(KEY), scratch);
    if (flag->type == PDF_OBJ_BOOL && flag->ival)
        return false;
    CPDFObj yes;
    yes.set_bool(1);
    form.set_item(KEY, &yes);
    return true;
}

}  // namespace

void set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref)
{
    CPDFObj* entry = root.dict->get_item(CPDFDictionary::sm_tag_acro_form);
    if (!entry)
        return;
    if (entry->type == PDF_OBJ_REF) {
        CPDFObj form;
        xref.get_entity(form, entry->ref);
        if (form.dictionary() && raise_flag(xref, *form.dict))
            xref.store_changed(entry->ref, form);
    } else if (entry->dictionary() && raise_flag(xref, *entry->dict)) {
        xref.store_changed(root_ref, root);
    }
}
