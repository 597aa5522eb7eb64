#include "engine/annot_widget.h"

#include <cstring>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"

namespace {

constexpr const char* DEFAULT_ON = "Yes";

constexpr CPDFKeySet STATE_KEY_SET{"AP", "AS"};

char* copy_text(const char* text)
{
    const size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(VXAlloc(size));
    if (copy)
        std::memcpy(copy, text, size);
    return copy;
}

// The first state under "N" other than "Off"; null when the normal appearance is a single stream or missing.
const char* on_state_of(const CPDFDictionary* states)
{
    for (int32_t i = 0; states && i < states->count; ++i) {
        if (std::strcmp(states->items[i]->key(), PDF_STATE_OFF) != 0)
            return states->items[i]->key();
    }
    return nullptr;
}

}  // namespace

CPDFAnnotWidget::~CPDFAnnotWidget()
{
    VXFree(m_on_state);
    VXFree(m_alt_state);
    m_text.release();
}

int CPDFAnnotWidget::load(CPDFXRefTable* xref, const PDF_REF& ref)
{
    CPDFObj own;
    xref->get_entity(own, ref, &STATE_KEY_SET);
    const CPDFDictionary* dict = own.dictionary();
    if (!dict)
        return 0;
    m_xref = xref;
    m_ref = ref;
    const CPDFEntryView ap(xref, dict->get_item("AP"));
    const auto states = [&ap](const char* key) { return ap->dictionary() ? ap->dict->get_item(key) : nullptr; };
    const CPDFEntryView normal(xref, states("N"));
    const char* on = on_state_of(normal->dictionary());
    // Some writers have the on state among the pressed appearances only.
    const CPDFEntryView pressed(xref, on ? nullptr : states("D"));
    if (!on)
        on = on_state_of(pressed->dictionary());
    VXFree(m_on_state);
    m_on_state = on ? copy_text(on) : nullptr;

    const CPDFEntryView as(xref, dict->get_item("AS"));
    const char* shown = as->name_text();
    VXFree(m_alt_state);
    if (shown && (on || std::strcmp(shown, PDF_STATE_OFF) != 0))
        m_alt_state = copy_text(shown);
    else
        m_alt_state = on ? nullptr : copy_text(DEFAULT_ON);
    return 1;
}

void CPDFAnnotWidget::set_check_value(int on)
{
    if (!on)
        show(PDF_STATE_OFF);
    else if (m_on_state)
        show(m_on_state);
    else
        show(m_alt_state && std::strcmp(m_alt_state, PDF_STATE_OFF) != 0 ? m_alt_state : DEFAULT_ON);
}

void CPDFAnnotWidget::set_radio_value(int on)
{
    set_check_value(on);
}

void CPDFAnnotWidget::set_radio_value(const char* state)
{
    const char* on = m_on_state ? m_on_state : m_alt_state;
    set_check_value(on && std::strcmp(on, state) == 0 && std::strcmp(on, PDF_STATE_OFF) != 0);
}

void CPDFAnnotWidget::set_edit_value(const PDF_String* value, const PDF_String*, int)
{
    PDF_String text = {0, nullptr};  // aside, for `value` may be m_text
    if (value && value->buf && !text.assign(value->buf, value->len))
        return;
    m_text.release();
    m_text.take(text);
}

void CPDFAnnotWidget::set_choice_sel(int index)
{
    m_choice = index;
}

void CPDFAnnotWidget::show(const char* state)
{
    if (!m_xref)
        return;
    const VXFailureCheck memory;
    CPDFObj name;
    name.set_name(state);
    const PDF_ENTRY_CHANGE change[] = {{"AS", &name}};
    if (!memory.failed())
        static_cast<void>(m_xref->change_entries(m_ref, change));  // a widget that is gone changes nothing
}
