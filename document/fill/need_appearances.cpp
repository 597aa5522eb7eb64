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

}  // namespace

PDF_CHANGE_RESULT set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref)
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
    if (is_raised(xref, *dict))
        return PDF_CHANGE_RESULT::STORED;
    CPDFObj yes;
    yes.set_bool(1);
    const PDF_ENTRY_CHANGE change[] = {{KEY, &yes}};
    if (apart)
        return xref.change_entries(entry->ref, change);
    dict->set_item(KEY, &yes);
    if (!memory.failed())
        xref.store_changed(root_ref, root);
    return memory.failed() ? PDF_CHANGE_RESULT::NO_MEMORY : PDF_CHANGE_RESULT::STORED;
}
