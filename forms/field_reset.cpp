#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_kind.h"

namespace {

void reset_text(CPDFAnnotWidget& widget, const CPDFObj& def_value)
{
    if (def_value.type == PDF_OBJ_STRING) {
        widget.set_edit_value(&def_value.str, nullptr, 0);
        return;
    }
    PDF_String empty;
    empty.init(nullptr, 1);
    if (empty.buf)
        widget.set_edit_value(&empty, nullptr, 0);
    empty.release();
}

}  // namespace

void CPDFField::reset()
{
    reset_own();
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (m_kids[i])
            m_kids[i]->reset();
    }
}

void CPDFField::reset_own()
{
    switch (field_kind(*this).id) {
    case KIND_TEXT:
        if (m_widget)
            reset_text(*m_widget, m_def_value);
        break;
    case KIND_CHECK:
        if (m_widget)
            m_widget->set_check_value(m_def_value.name_text() && !m_def_value.is_name(PDF_STATE_OFF));
        break;
    case KIND_RADIO:
        reset_radio();
        break;
    case KIND_COMBO:
        reset_combo();
        break;
    default:
        break;
    }
}

void CPDFField::reset_radio()
{
    const char* name = m_def_value.name_text();
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (m_kids[i] && m_kids[i]->m_widget)
            m_kids[i]->m_widget->set_radio_value(name ? name : PDF_STATE_OFF);
    }
    const VXFailureCheck check;
    CPDFObj value;
    value.copy_from(&m_def_value);
    if (check.failed())
        return;
    m_value.take(value);
    store_entry("V", m_value);
}

void CPDFField::reset_combo()
{
    if (!m_widget || m_def_value.type != PDF_OBJ_STRING)
        return;
    for (int32_t i = 0; i < m_opt_cnt; ++i) {
        if (m_opts[i].text.equals(m_def_value.str)) {
            m_widget->set_choice_sel(i);
            return;
        }
    }
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

// "Kids" may also hold widgets and what did not load, so the slot is not the place there: the object number tells it.
int CPDFField::remove_kid(int32_t slot)
{
    CPDFObj own;
    m_xref->get_entity(own, m_ref);
    CPDFObj* entry = own.dictionary() ? own.dict->get_item("Kids") : nullptr;
    CPDFObj kids;
    take_obj(m_xref, entry, kids);
    CPDFArray* array = kids.array();
    if (!entry || !array)
        return 1;
    const uint32_t num = m_kids[slot]->m_ref.num;
    int32_t at = 0;
    while (at < array->count && !(array->items[at].type == PDF_OBJ_REF && array->items[at].ref.num == num))
        ++at;
    array->remove_obj(at < array->count ? at : slot);
    entry->take(kids);
    m_xref->take_changed(m_ref, own);
    --m_kid_cnt;
    delete m_kids[slot];
    std::memmove(m_kids + slot, m_kids + slot + 1, static_cast<size_t>(m_kid_cnt - slot) * sizeof(CPDFField*));
    m_kids[m_kid_cnt] = nullptr;
    return 1;
}
