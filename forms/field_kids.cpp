#include <cstring>
#include <memory>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/growable.h"
#include "core/xref_table.h"
#include "forms/field.h"
#include "forms/field_edit.h"

// A kid for the next slot, with the kind that it takes over; null when memory runs out.
CPDFField* CPDFField::new_kid()
{
    auto* kid = new CPDFField;
    if (!kid)
        return nullptr;
    kid->m_index = m_kid_cnt;
    if (m_type != FIELD_UNKNOWN) {
        kid->m_type = m_type;
        kid->m_flags = m_flags;
    }
    return kid;
}

CPDFField* CPDFField::append_child(const PDF_REF& ref)
{
    static constexpr CPDFKeySet KEY_SET{"Kids"};
    const VXFailureCheck check;
    CPDFObj own;
    m_xref->get_entity(own, m_ref, &KEY_SET);
    if (!own.dictionary())
        return nullptr;
    CPDFObj kids;
    take_obj(m_xref, own.dict->get_item("Kids"), kids);
    if (!kids.array() && !kids.set_array())
        return nullptr;
    kids.arr->append_ref(ref);

    std::unique_ptr<CPDFField> kid(new_kid());
    if (!kid || !kid->load(this, m_xref, ref) || !vx_set_room(m_kids, static_cast<size_t>(m_kid_cnt) + 1))
        return nullptr;
    if (change_entries(*this, {{"Kids", &kids}}, check) != PDF_CHANGE_RESULT::STORED)
        return nullptr;
    return m_kids[m_kid_cnt++] = kid.release();
}

int CPDFField::adopt_kid(CPDFField* kid)
{
    std::unique_ptr<CPDFField> owned(kid);
    m_kids = vx_alloc_array<CPDFField*>(1);
    if (!m_kids)
        return 0;
    m_kids[0] = owned.release();
    m_kid_cnt = 1;
    return 1;
}

int CPDFField::remove_child(CPDFField* child)
{
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (!m_kids[i])
            continue;
        if (m_kids[i] == child)
            return remove_kid(i);
        if (m_kids[i]->remove_child(child))
            return 1;
    }
    return 0;
}

// "Kids" may also hold widgets and what did not load, so the slot is not the place there: the object number tells it. One
// that is listed twice is one kid.
int CPDFField::remove_kid(int32_t slot)
{
    const VXFailureCheck check;
    CPDFObj own;
    m_xref->get_entity(own, m_ref);
    CPDFObj* entry = own.dictionary() ? own.dict->get_item("Kids") : nullptr;
    CPDFObj kids;
    take_obj(m_xref, entry, kids);
    CPDFArray* array = kids.array();
    if (!entry || !array)
        return 1;
    const uint32_t num = m_kids[slot]->m_ref.num;
    const int32_t before = array->count;
    for (int32_t i = before - 1; i >= 0; --i) {
        if (array->items[i].type == PDF_OBJ_REF && array->items[i].ref.num == num)
            array->remove_obj(i);
    }
    if (array->count == before)
        array->remove_obj(slot);
    entry->take(kids);
    if (check.failed() || !m_xref->take_changed(m_ref, own))
        return 1;
    --m_kid_cnt;
    delete m_kids[slot];
    std::memmove(m_kids + slot, m_kids + slot + 1, static_cast<size_t>(m_kid_cnt - slot) * sizeof(CPDFField*));
    m_kids[m_kid_cnt] = nullptr;
    return 1;
}
