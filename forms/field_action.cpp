#include <memory>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/action.h"
#include "forms/field.h"

const char* const CPDFField::ms_actions[4] = {"K", "F", "V", "C"};

CPDFAction* CPDFField::get_addition_js(int event)
{
    static constexpr CPDFKeySet KEY_SET{"AA"};
    CPDFObj own;
    m_xref->get_entity(own, m_ref, &KEY_SET);
    if (!own.dictionary() || event < 0 || event > 3)
        return nullptr;
    const CPDFObj* actions = own.dict->get_item("AA");
    if (!actions)
        return m_parent ? m_parent->get_addition_js(event) : nullptr;
    const CPDFEntryView dict_view(m_xref, actions);
    const CPDFDictionary* dict = dict_view->dictionary();
    const CPDFObj* entry = dict && m_type != FIELD_UNKNOWN ? dict->get_item(ms_actions[event]) : nullptr;
    std::unique_ptr<CPDFAction> action(CPDFAction::parser_act(m_xref, entry));
    return action && action->m_type == ACTION_JAVASCRIPT ? action.release() : nullptr;
}
