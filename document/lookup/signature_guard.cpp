#include "document/lookup/signature_guard.h"

#include <algorithm>
#include <cstring>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

// Certification, or a lock, that allows nothing to change (ISO 32000-2, tables 236 and 257, "P").
constexpr int32_t NO_CHANGES = 1;

// How many signatures the file holds, up to `most`. A signature's digest skips its own bytes, so it and its byte range
// stand in the file as plain text.
int count_signatures(const uint8_t* data, size_t size, int most)
{
    // The whole file is looked through, so the search goes by a letter that is rare in forms, not by the slash.
    constexpr char WORD[] = "/ByteRange";
    constexpr size_t WORD_SIZE = sizeof WORD - 1;
    constexpr size_t RARE = 2;
    if (size < WORD_SIZE)
        return 0;
    int count = 0;
    const uint8_t* at = data + RARE;
    const uint8_t* const end = data + size - (WORD_SIZE - RARE) + 1;
    while (at < end && count < most &&
           (at = static_cast<const uint8_t*>(std::memchr(at, WORD[RARE], static_cast<size_t>(end - at))))) {
        count += std::memcmp(at - RARE, WORD, WORD_SIZE) == 0;
        ++at;
    }
    return count;
}

// Calls `visit(const CPDFObj&)` with each element, resolved, of the array `key`.
template <typename Visit>
void for_each_element(CPDFXRefTable& xref, const CPDFDictionary& dict, const char* key, Visit&& visit)
{
    const CPDFEntryView array_entry(&xref, dict.get_item(key));
    const CPDFArray* array = array_entry->array();
    for (int32_t i = 0; array && i < array->count; ++i) {
        const CPDFEntryView element(&xref, &array->items[i]);
        visit(*element);
    }
}

// Whether a signature says no more than that a free viewer has more rights.
bool grants_rights_only(CPDFXRefTable& xref, const CPDFDictionary& signature)
{
    bool grants = false;
    bool others = false;
    for_each_element(xref, signature, "Reference", [&](const CPDFObj& reference) {
        const CPDFDictionary* dict = reference.dictionary();
        const CPDFEntryView method(&xref, dict ? dict->get_item("TransformMethod") : nullptr);
        const bool rights = method->is_name("UR") || method->is_name("UR3");
        (rights ? grants : others) = true;
    });
    return grants && !others && signature.get_item("ByteRange");
}

// How many signatures say no more than that: each an object of its own.
int count_usage_rights(CPDFXRefTable& xref, const CPDFDictionary& root)
{
    const CPDFEntryView permissions_entry(&xref, root.get_item("Perms"));
    const CPDFDictionary* permissions = permissions_entry->dictionary();
    uint32_t counted = 0;
    int count = 0;
    for (const char* key : {"UR", "UR3"}) {
        const CPDFObj* entry = permissions ? permissions->get_item(key) : nullptr;
        if (!entry || entry->type != PDF_OBJ_REF || entry->ref.num == counted)
            continue;
        counted = entry->ref.num;
        const CPDFEntryView dict_entry(&xref, entry);
        const CPDFDictionary* dict = dict_entry->dictionary();
        count += dict && grants_rights_only(xref, *dict);
    }
    return count;
}

bool is_under(const std::string& name, const std::string& top)
{
    return name.compare(0, top.size(), top) == 0 && (name.size() == top.size() || name[top.size()] == '.');
}

}  // namespace

bool has_signature(const uint8_t* data, size_t size, CPDFXRefTable& xref, const CPDFDictionary& root)
{
    const int elsewhere = count_usage_rights(xref, root);
    return count_signatures(data, size, elsewhere + 1) > elsewhere;
}

CPDFSignatureGuard::CPDFSignatureGuard(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFDictionary& root)
{
    for_each_field(form, [&](CPDFField& field) {
        if (field.is_signed())
            add_signature(xref, field);
    });
    read_permissions(xref, root);
}

// A signature locks what its own reference says; a lock that its field asks for counts once it is signed.
void CPDFSignatureGuard::add_signature(CPDFXRefTable& xref, CPDFField& field)
{
    m_signed = true;
    const std::string name = full_name(field);
    if (const CPDFDictionary* signature = field.m_value.dictionary())
        read_references(xref, *signature, name);
    CPDFObj own;
    xref.get_entity(own, field.m_ref);
    const CPDFDictionary* dict = own.dictionary();
    const CPDFEntryView lock(&xref, dict ? dict->get_item("Lock") : nullptr);
    if (!lock->dictionary())
        return;
    add_lock(xref, *lock->dict, name);
    add_permission(xref, *lock->dict);
}

void CPDFSignatureGuard::read_references(CPDFXRefTable& xref, const CPDFDictionary& signature, const std::string& name)
{
    for_each_element(xref, signature, "Reference", [&](const CPDFObj& reference) {
        const CPDFDictionary* dict = reference.dictionary();
        const CPDFEntryView method(&xref, dict ? dict->get_item("TransformMethod") : nullptr);
        const CPDFEntryView parameters(&xref, dict ? dict->get_item("TransformParams") : nullptr);
        m_certified = m_certified || method->is_name("DocMDP");
        if (!parameters->dictionary())
            return;
        if (method->is_name("FieldMDP"))
            add_lock(xref, *parameters->dict, name);
        else if (method->is_name("DocMDP"))
            add_permission(xref, *parameters->dict);
    });
}

void CPDFSignatureGuard::add_permission(CPDFXRefTable& xref, const CPDFDictionary& parameters)
{
    const int32_t allowed = resolve_integer(&xref, parameters.get_item("P"));
    m_no_changes = m_no_changes || allowed == NO_CHANGES;
    m_certified = m_certified || allowed > 0;
}

void CPDFSignatureGuard::add_lock(CPDFXRefTable& xref, const CPDFDictionary& parameters, const std::string& signature)
{
    const CPDFEntryView action(&xref, parameters.get_item("Action"));
    LOCK lock = {signature, !action->is_name("Include"), {}};
    if (!action->is_name("All")) {
        for_each_element(xref, parameters, "Fields", [&lock](const CPDFObj& name) {
            if (name.type == PDF_OBJ_STRING)
                lock.fields.push_back(utf8_of(name.str));
        });
    }
    m_locks.push_back(std::move(lock));
}

// The certifying signature need not belong to a field of the form.
void CPDFSignatureGuard::read_permissions(CPDFXRefTable& xref, const CPDFDictionary& root)
{
    const CPDFEntryView permissions_entry(&xref, root.get_item("Perms"));
    const CPDFDictionary* permissions = permissions_entry->dictionary();
    const CPDFEntryView signature(&xref, permissions ? permissions->get_item("DocMDP") : nullptr);
    if (!signature->dictionary())
        return;
    m_signed = true;
    read_references(xref, *signature->dict, "");
}

CPDFStatus CPDFSignatureGuard::check_fill(const CPDFField& field) const
{
    if (m_no_changes)
        return CPDFStatus::failed(PDF_CODE::READ_ONLY,
                                  "field " + in_quotes(full_name(field)) +
                                      " can't be changed: the document is certified against any change");
    const std::string name = m_locks.empty() ? std::string() : full_name(field);
    for (const LOCK& lock : m_locks) {
        const auto covers = [&name](const std::string& top) { return is_under(name, top); };
        const bool named = std::any_of(lock.fields.begin(), lock.fields.end(), covers);
        if (named != lock.all_but)
            return CPDFStatus::failed(PDF_CODE::READ_ONLY, "field " + in_quotes(name) + " is locked by the signature " +
                                                               in_quotes(lock.signature));
    }
    return {};
}

CPDFStatus CPDFSignatureGuard::check_data() const
{
    if (m_no_changes)
        return CPDFStatus::failed(PDF_CODE::READ_ONLY, "the document is certified against any change");
    for (const LOCK& lock : m_locks) {
        if (lock.all_but)
            return CPDFStatus::failed(PDF_CODE::READ_ONLY,
                                      "the data of the form are locked by the signature " + in_quotes(lock.signature));
    }
    return {};
}

CPDFStatus CPDFSignatureGuard::check_edit(CPDFField* field) const
{
    if (m_certified)
        return CPDFStatus::failed(PDF_CODE::READ_ONLY, "the document is certified against changes of its fields");
    if (!field || !m_signed)
        return {};
    if (field->has_sign())
        return CPDFStatus::failed(PDF_CODE::READ_ONLY, "field " + in_quotes(full_name(*field)) + " is signed");
    CPDFStatus status;
    for_each_field(*field, [&](const CPDFField& at) {
        if (status.ok())
            status = check_fill(at);
    });
    return status;
}
