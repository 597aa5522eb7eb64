#include "document/fill/need_appearances.h"

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

constexpr const char* KEY = "NeedAppearances";
constexpr CPDFKeySet KEYS{KEY};

bool is_raised(CPDFXRefTable& xref, const CPDFDictionary& form)
{
    const CPDFEntryView flag(&xref, form.get_item(KEY));
    return flag->type == PDF_OBJ_BOOL && flag->ival;
}

PDF_CHANGE_RESULT change_flag(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref, const CPDFObj& flag)
{
    CPDFObj* entry = root.dict->get_item(CPDFDictionary::sm_tag_acro_form);
    const VXFailureCheck memory;
    CPDFObj form;
    const bool apart = entry && entry->type == PDF_OBJ_REF;
    if (apart)
        xref.get_entity(form, entry->ref, &KEYS);
    CPDFDictionary* dict = apart ? form.dictionary() : entry ? entry->dictionary() : nullptr;
    if (memory.failed())
        return PDF_CHANGE_RESULT::NO_MEMORY;
    if (!dict)
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    if (is_raised(xref, *dict) == (flag.type != PDF_OBJ_NULL))
        return PDF_CHANGE_RESULT::STORED;
    const PDF_ENTRY_CHANGE change[] = {{KEY, &flag}};
    if (apart)
        return xref.change_entries(entry->ref, change);
    dict->set_item(KEY, &flag);
    if (!memory.failed())
        xref.store_changed(root_ref, root);
    return memory.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : PDF_CHANGE_RESULT::STORED;
}

}  // namespace

bool needs_appearances(CPDFXRefTable& xref, const CPDFObj& root)
{
    const CPDFEntryView form(&xref, root.dict->get_item(CPDFDictionary::sm_tag_acro_form));
    return form->dictionary() && is_raised(xref, *form->dict);
}

PDF_CHANGE_RESULT set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref)
{
    CPDFObj yes;
    yes.set_bool(1);
    return change_flag(xref, root, root_ref, yes);
}

PDF_CHANGE_RESULT clear_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref)
{
    return change_flag(xref, root, root_ref, CPDFObj());
}
