#include <cstring>
#include <memory>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/growable.h"
#include "core/xref_table.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

constexpr int SIGNATURES_EXIST_APPEND_ONLY = 3;

constexpr CPDFKeySet FIELDS_KEY_SET{"Fields"};

// Makes `out` the array behind "Fields" and returns it; null when there is none.
CPDFArray* fetch_fields(CPDFXRefTable& xref, const PDF_REF& form, CPDFObj& out)
{
    CPDFObj own;
    xref.get_entity(own, form, &FIELDS_KEY_SET);
    if (own.dictionary())
        take_obj(&xref, own.dict->get_item("Fields"), out);
    return out.array();
}

}  // namespace

// Lists what "Fields" is to hold, one element a slot. A null slot keeps the element that it has.
bool CPDFAcroForm::list_fields(CPDFArray& out)
{
    const VXFailureCheck check;
    CPDFObj before;
    bool fetched = false;
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        if (m_fields[i]) {
            out.append_ref(m_fields[i]->m_ref);
            continue;
        }
        if (!fetched)
            fetch_fields(*m_xref, m_ref, before);
        fetched = true;
        CPDFObj* kept = out.append();
        if (kept && before.array() && i < before.arr->count)
            kept->take(before.arr->items[i]);
    }
    return !check.failed();
}

// Makes `fields`, which is taken, the "Fields" of the form dictionary. As an object, for as text a long list would be
// parsed and written anew with every change.
void CPDFAcroForm::store_fields(CPDFObj& fields)
{
    CPDFObj form;
    m_xref->get_entity(form, m_ref);
    CPDFObj* entry = form.dictionary() ? form.dict->value_slot("Fields") : nullptr;
    if (!entry)
        return;
    entry->take(fields);
    m_xref->take_changed(m_ref, form);
}

CPDFField* CPDFAcroForm::append_field(const PDF_REF& ref)
{
    if (ref.num == 0 || !m_xref)
        return nullptr;
    auto* field = vx_set_room(m_fields, static_cast<size_t>(m_field_cnt) + 1) ? new CPDFField : nullptr;
    if (!field)
        return nullptr;
    m_fields[m_field_cnt++] = field;
    if (!field->load(nullptr, m_xref, ref))
        field->m_ref = ref;
    CPDFObj fields;
    if (fields.set_array() && list_fields(*fields.arr))
        store_fields(fields);
    return field;
}

void CPDFAcroForm::remove_field(CPDFField* field)
{
    if (!field || m_field_cnt <= 0)
        return;
    int32_t slot = 0;
    for (; slot < m_field_cnt && m_fields[slot] != field; ++slot) {
        if (m_fields[slot] && m_fields[slot]->remove_child(field))
            return;
    }
    CPDFObj fields;
    if (slot == m_field_cnt || !fetch_fields(*m_xref, m_ref, fields))
        return;
    fields.arr->remove_obj(slot);
    store_fields(fields);
    delete field;
    --m_field_cnt;
    std::memmove(m_fields + slot, m_fields + slot + 1, static_cast<size_t>(m_field_cnt - slot) * sizeof(CPDFField*));
}

int CPDFAcroForm::calc_sign_flag()
{
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        if (m_fields[i] && m_fields[i]->has_sign())
            return 1;
    }
    return set_sign_flag(0);
}

int CPDFAcroForm::set_sign_flag(int on)
{
    if (!m_xref)
        return 0;
    CPDFObj flags;
    flags.set_int(on ? SIGNATURES_EXIST_APPEND_ONLY : 0);
    const PDF_ENTRY_CHANGE change[] = {{"SigFlags", &flags}};
    return m_xref->change_entries(m_ref, change) != PDF_CHANGE_RESULT::NO_DICTIONARY;
}
