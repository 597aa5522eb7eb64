#include "forms/field.h"

#include <memory>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "engine/action.h"
#include "engine/sign.h"
#include "forms/field_edit.h"

CPDFField::CPDFField()
    : m_xref(nullptr),
      m_type(FIELD_UNKNOWN),
      m_flags(0),
      m_widgets(nullptr),
      m_widget_cnt(0),
      m_kids(nullptr),
      m_parent(nullptr),
      m_kid_cnt(0),
      m_name{0, nullptr},
      m_ref{0, 0},
      m_opts(nullptr),
      m_opt_cnt(0),
      m_sels(nullptr),
      m_sel_cnt(0),
      m_xfa_target(nullptr),
      m_xfa_event(XFA_EVENT_NONE),
      m_max_len(0),
      m_index(0),
      m_inherited(0),
      m_sign(nullptr),
      m_widget(nullptr)
{
}

CPDFField::~CPDFField()
{
    for (int32_t i = 0; i < m_kid_cnt; ++i)
        delete m_kids[i];
    VXFree(m_kids);
    VXFree(m_widgets);
    release_opts();
    VXFree(m_sels);
    VXFree(m_xfa_target);
    delete m_sign;
    m_name.release();
}

void CPDFField::release_opts()
{
    for (int32_t i = 0; i < m_opt_cnt; ++i) {
        m_opts[i].val.release();
        m_opts[i].text.release();
    }
    VXFree(m_opts);
    m_opts = nullptr;
    m_opt_cnt = 0;
}

void CPDFField::store_entry(const char* key, const CPDFObj& value)
{
    store_entries(*this, {{key, &value}});
}

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
