#include "forms/field.h"

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
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
    change_entries(*this, {{key, &value}});
}
