#include "document/merge/merge.h"

#include <algorithm>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/edit/form_home.h"
#include "document/merge/merge_internal.h"
#include "forms/acro_form.h"

namespace {

constexpr const char* STRUCTURE = "StructTreeRoot";

// References to what each document has but once lead to that of the first; what does not come along is cut off.
void place_roots(MERGE& merge)
{
    merge.copier.place(merge.from.root_ref.num, merge.into.root_ref);
    if (merge.from.form.m_ref.num)
        merge.copier.place(merge.from.form.m_ref.num, merge.into.form.m_ref);
    const CPDFObj* structure = merge.other.get_item(STRUCTURE);
    if (!structure)
        return;
    if (structure->type == PDF_OBJ_REF)
        merge.copier.place(structure->ref.num, {0, 0});
    merge.result.notes.emplace_back("its structure (tags) is dropped");
}

// A catalog may name a later version than the header (ISO 32000-2, 7.2.2); the higher of all is that of the result.
void raise_version(const COPY_SOURCE& source, const CPDFDictionary& other, CPDFDictionary& catalog)
{
    std::string version;
    if (source.size >= 8 && std::equal(source.data, source.data + 5, "%PDF-"))
        version.assign(reinterpret_cast<const char*>(source.data) + 5, 3);
    const CPDFEntryView named(&source.xref, other.get_item("Version"));
    if (named->name_text() && named->name > version)
        version = named->name;
    const CPDFObj* own = catalog.get_item("Version");
    if (version.size() == 3 && version > (own && own->name_text() ? own->name : "1.4"))
        catalog.set_item_name("Version", version.c_str());
}

}  // namespace

CPDFStatus merge_document(EDIT_TARGET& into, EDIT_TARGET& from, const COPY_SOURCE& source, PDF_SAME_NAMES names,
                          MERGE_RESULT& result)
{
    const VXFailureCheck memory;
    FIELD_PLAN plan;
    if (CPDFStatus status = plan_fields(into, from, names, plan); !status.ok())
        return status;
    if (CPDFStatus status = settle_form(into); !status.ok())
        return status;
    CPDFObj catalog;
    into.xref.get_entity(catalog, into.root_ref);
    if (!catalog.dictionary())
        return no_memory_to_edit();
    CPDFObjectCopier copier(source, into.xref);
    MERGE merge = {into, from, copier, *catalog.dict, *from.root.dict, result, {}, {}, {}};
    copier.adapt_with([&merge](CPDFDictionary& dict) { adapt_dictionary(merge, dict); });
    place_roots(merge);
    merge_outlines(merge);
    merge_names(merge);
    CPDFStatus status = merge_form(merge, plan);
    if (status.ok())
        status = merge_pages(merge);
    merge_page_labels(merge);
    merge_layers(merge);
    raise_version(source, merge.other, merge.catalog);
    if (status.ok())
        status = copier.finish();
    if (status.ok() && !into.xref.take_changed(into.root_ref, catalog))
        status = no_memory_to_edit();
    return status.ok() && memory.failed() ? no_memory_to_edit() : status;
}
