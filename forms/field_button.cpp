#include <cstring>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/annot_widget.h"
#include "forms/field.h"

namespace {

bool is_off(const char* state)
{
    return std::strcmp(state, PDF_STATE_OFF) == 0;
}

// Makes `value` the name `state`, with a null text when memory runs out; whether there is a text.
bool set_state(CPDFObj& value, const char* state)
{
    CPDFObj name;  // aside, for `state` may be the value's own
    name.set_name(state);
    name.type = PDF_OBJ_NAME;
    value.take(name);
    return value.name != nullptr;
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
    m_xref->get_entity(own, m_ref);
    if (!own.dictionary())
        return;
    const VXFailureCheck memory;
    set_state(m_value, state);
    own.dict->set_item("V", &m_value);
    if (memory.failed())
        return;
    // The widget of this field is the caller's; those of its siblings go off with it.
    for (int32_t i = 0; m_inherited && m_parent && !is_off(m_value.name) && i < m_parent->m_kid_cnt; ++i) {
        const CPDFField* kid = m_parent->m_kids[i];
        if (kid && kid->m_widget)
            kid->m_widget->set_check_value(0);
    }
    // As it was fetched: what a widget of this very dictionary has stored meanwhile goes.
    m_xref->take_changed(m_ref, own);
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
    if (set_state(m_value, widget->m_on_state ? widget->m_on_state : ""))
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
