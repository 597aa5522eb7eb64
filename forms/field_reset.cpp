#include <cstring>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_kind.h"
#include "forms/field_select.h"

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

void CPDFAcroForm::reset(const CPDFArray* fields, int flags)
{
    for_each_selected_field(*this, fields, flags, [](CPDFField& field) { field.reset(); });
}
