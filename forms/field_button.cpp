#include <cstring>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/annot_widget.h"
#include "forms/field.h"

namespace {

constexpr CPDFKeySet VALUE_KEY_SET{"V"};

bool is_off(const char* state)
{
    return std::strcmp(state, "Off") == 0;
}

bool same_state(const char* a, const char* b)
{
    return a && b && std::strcmp(a, b) == 0;
}

}  // namespace

void CPDFField::set_check_value(const char* state)
{
    if (m_type != FIELD_BUTTON || (m_flags & (FIELD_RADIO | FIELD_PUSH_BUTTON)))
        return;
    CPDFObj own;
    m_xref->get_entity(own, m_ref, &VALUE_KEY_SET);
    if (!own.dictionary())
        return;
    // The widget of this field is the caller's; those of its siblings go off with it.
    for (int32_t i = 0; m_inherited && m_parent && !is_off(state) && i < m_parent->m_kid_cnt; ++i) {
        const CPDFField* kid = m_parent->m_kids[i];
        if (kid && kid->m_widget)
            kid->m_widget->set_check_value(0);
    }
    m_value.set_name(state);
    if (m_value.type == PDF_OBJ_NAME)  // not when memory ran out
        store_entry("V", m_value);
}

int CPDFField::get_check_value()
{
    const char* state = m_type == FIELD_BUTTON ? m_value.name_text() : nullptr;
    return state && *state && !is_off(state);
}

void CPDFField::set_radio(CPDFAnnotWidget* widget)
{
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        if (m_kids[i] && m_kids[i]->m_widget)
            m_kids[i]->m_widget->set_radio_value(0);
    }
    widget->set_radio_value(1);
    m_value.set_name(widget->m_on_state ? widget->m_on_state : "");
    if (m_value.type == PDF_OBJ_NAME)
        store_entry("V", m_value);
}

int CPDFField::get_radio_value(CPDFAnnotWidget* widget)
{
    if (m_type != FIELD_BUTTON)
        return 0;
    const bool has_on_state = widget->m_on_state && *widget->m_on_state;
    const char* state = has_on_state ? widget->m_on_state : widget->m_alt_state;
    if (m_value.type == PDF_OBJ_NAME)
        return same_state(state, m_value.name);
    return m_parent && m_parent->m_value.type == PDF_OBJ_NAME && same_state(state, m_parent->m_value.name);
}

int CPDFField::find_radio_kid(const char* state) const
{
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        const CPDFAnnotWidget* widget = m_kids[i] ? m_kids[i]->m_widget : nullptr;
        if (widget && same_state(widget->m_on_state, state))
            return i;
    }
    return -1;
}
