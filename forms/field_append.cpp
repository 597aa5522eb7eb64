#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "forms/field.h"
#include "forms/field_edit.h"

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
    if (!kids.array())
        kids.set_array();
    kids.arr->append_ref(ref);

    auto kid = std::make_unique<CPDFField>();
    kid->m_index = m_kid_cnt;
    if (m_type != FIELD_UNKNOWN) {
        kid->m_type = m_type;
        kid->m_flags = m_flags;
    }
    const bool loaded = kid->load(this, m_xref, ref) != 0;
    void* grown = loaded ? VXRealloc(m_kids, (static_cast<size_t>(m_kid_cnt) + 1) * sizeof(CPDFField*)) : nullptr;
    if (!grown)
        return nullptr;
    m_kids = static_cast<CPDFField**>(grown);
    if (change_entries(*this, {{"Kids", &kids}}, check) != PDF_CHANGE_RESULT::STORED)
        return nullptr;
    m_kids[m_kid_cnt++] = kid.release();
    return m_kids[m_kid_cnt - 1];
}
