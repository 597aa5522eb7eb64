// The front class, continued: what a document has, at a glance.
#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/lookup/export_value.h"
#include "document/lookup/field_text.h"
#include "document/lookup/held_value.h"
#include "document/summary.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

bool is_true(CPDFXRefTable& xref, const CPDFDictionary* dict, const char* key)
{
    const CPDFEntryView entry(&xref, dict ? dict->get_item(key) : nullptr);
    return entry->type == PDF_OBJ_BOOL && entry->ival;
}

bool shows_value(const CPDFField& field)
{
    if (field.m_value.type == PDF_OBJ_STREAM)
        return true;
    const PDF_VALUE_TEXT value = own_value(field);
    const bool is_off = field.m_type == FIELD_BUTTON && value.text == PDF_STATE_OFF;
    return value.present && !is_off && !(value.is_list ? value.items.empty() : value.text.empty());
}

bool has_scripts(CPDFFieldScripts& scripts, const CPDFField& field)
{
    const PDF_FIELD_SCRIPTS* own = field.m_has_actions ? scripts.of(field) : nullptr;
    return own && std::any_of(std::begin(own->on), std::end(own->on), [](const auto& on) { return !on.empty(); });
}

}  // namespace

void CPDFDocument::State::summarize_fields(PDF_SUMMARY& out)
{
    const CPDFSignatureGuard& guarding = signatures();
    CPDFFieldScripts scripts(reader->budget());
    std::unordered_set<size_t> names;  // their hashes
    for_each_field(loaded_form(), [&](const CPDFField& field) {
        if (field.m_name.len <= 0)
            return;
        ++out.fields[field_kind(field).id];
        out.same_names += !names.insert(std::hash<std::string>()(full_name(field))).second;
        out.signatures += field.m_sign != nullptr;
        out.with_scripts += has_scripts(scripts, field);
        if (!CPDFExportValues::is_exported(field))
            return;
        const bool filled_in = shows_value(field);
        out.filled += filled_in;
        out.required_empty += !filled_in && (effective_flags(field) & FIELD_REQUIRED);
        out.locked += guarding.is_signed() && !guarding.check_fill(field).ok();
    });
    out.certified = guarding.is_certified();
}

CPDFStatus CPDFDocument::summarize(PDF_SUMMARY& out)
{
    return within_memory("read the form", [&] {
        State& state = *m_state;
        out = {};
        CPDFStatus status = state.load_whole_form();
        if (!status.ok())
            return status;
        const CPDFReadAllowance allowance(state.reader->budget());
        const CPDFDictionary* catalog = state.root.dictionary();
        const CPDFEntryView form(state.xref.get(), state.form_entry());
        out.pages = state.pages().page_count();
        state.summarize_fields(out);
        out.document_scripts = state.document_scripts().size();
        out.encrypted = trailer().get_item("Encrypt") != nullptr;
        out.has_xfa = state.has_xfa();
        out.is_dynamic = out.has_xfa && (is_true(*state.xref, catalog, "NeedsRendering") || state.has_only_xfa());
        out.needs_drawing = is_true(*state.xref, form->dictionary(), "NeedAppearances");
        out.tagged = catalog && catalog->get_item("StructTreeRoot");
        return allowance.used_up() ? too_much_to("read the form") : status;
    });
}
