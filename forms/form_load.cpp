#include <cstring>
#include <memory>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/text.h"
#include "core/xref_table.h"
#include "engine/resources.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/visit_set.h"

namespace {

constexpr int FIND_LIMIT = 61;
constexpr int GET_LIMIT = 254;

bool is_text(const CPDFObj& value, const char* text)
{
    return value.type == PDF_OBJ_STRING ? value.str.equals(text) : value.is_name(text);
}

}  // namespace

CPDFAcroForm::CPDFAcroForm()
    : m_ref{0, 0},
      m_xfa_ref{0, 0},
      m_loaded(0),
      m_has_xfa(0),
      m_fields(nullptr),
      m_field_cnt(0),
      m_res(nullptr),
      m_root(nullptr),
      m_root_ref{0, 0},
      m_xref(nullptr),
      m_xfa_single(0)
{
}

CPDFAcroForm::~CPDFAcroForm()
{
    unload();
}

void CPDFAcroForm::unload()
{
    delete m_res;
    m_res = nullptr;
    for (int32_t i = 0; i < m_field_cnt; ++i)
        delete m_fields[i];
    VXFree(m_fields);
    m_fields = nullptr;
    m_field_cnt = 0;
    m_xfa_ref = {0, 0};
    m_xfa_single = 0;
    m_loaded = 0;
}

void CPDFAcroForm::load(CPDFXRefTable* xref, const CPDFObj* form, CPDFObj* root, const PDF_REF& root_ref,
                        CPDFLoadWatch* watch)
{
    if (!form)
        return;
    if (form->type == PDF_OBJ_REF)
        m_ref = form->ref;
    const CPDFEntryView entry(xref, form);
    const CPDFDictionary* dict = entry->dictionary();
    m_loaded = 1;
    if (!dict)
        return;
    m_xref = xref;
    load_resources(*dict);
    load_fields(*dict, watch);
    load_xfa(*dict);
    m_root = root;
    m_root_ref = root_ref;
}

void CPDFAcroForm::load_resources(const CPDFDictionary& dict)
{
    const CPDFObj* entry = dict.get_item("DR");
    if (!entry)
        return;
    m_res = new CPDFResources;
    if (!m_res)
        return;
    m_res->bind(m_xref, entry);
    m_res->load_resource(m_xref, 0);
}

void CPDFAcroForm::load_fields(const CPDFDictionary& dict, CPDFLoadWatch* watch)
{
    const CPDFEntryView fields_view(m_xref, dict.get_item("Fields"));
    const CPDFArray* fields = fields_view->array();
    if (!fields || fields->count == 0)
        return;
    m_fields = vx_alloc_array<CPDFField*>(static_cast<size_t>(fields->count));
    if (!m_fields)
        return;
    m_field_cnt = fields->count;
    std::memset(m_fields, 0, static_cast<size_t>(m_field_cnt) * sizeof(CPDFField*));
    CPDFVisitSet visits;
    visits.watch = watch;
    visits.put_off_kids = true;
    for (int32_t i = 0; i < m_field_cnt; ++i)
        load_top(i, fields->items[i], visits);
    // Some files list kids here too: those that their parents have brought in by now are not loaded again.
    visits.put_off_kids = false;
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        if (!m_fields[i])
            load_top(i, fields->items[i], visits);
    }
}

void CPDFAcroForm::load_top(int32_t slot, const CPDFObj& entry, CPDFVisitSet& visits)
{
    std::unique_ptr<CPDFField> field(entry.type == PDF_OBJ_REF ? new CPDFField : nullptr);
    if (field && field->load_once(nullptr, m_xref, entry.ref, visits))
        m_fields[slot] = field.release();
}

void CPDFAcroForm::load_xfa(const CPDFDictionary& dict)
{
    const CPDFObj* entry = dict.get_item("XFA");
    if (!entry)
        return;
    m_has_xfa = 1;
    const CPDFEntryView xfa(m_xref, entry);
    if (const CPDFArray* packets = xfa->array()) {
        load_packets(*packets);
    } else if (xfa->type == PDF_OBJ_STREAM && entry->type == PDF_OBJ_REF) {
        m_xfa_ref = entry->ref;
        m_xfa_single = 1;
    }
}

void CPDFAcroForm::load_packets(const CPDFArray& packets)
{
    for (int32_t i = 0; i + 1 < packets.count; i += 2) {
        const CPDFEntryView name(m_xref, &packets.items[i]);
        const CPDFObj& packet = packets.items[i + 1];
        if (is_text(*name, "datasets") && packet.type == PDF_OBJ_REF)
            m_xfa_ref = packet.ref;
        if (is_text(*name, "template"))
            bind_template(&packet);
    }
}

CPDFField* CPDFAcroForm::find(const PDF_REF& ref)
{
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        CPDFField* found = m_fields[i] ? m_fields[i]->get(ref) : nullptr;
        if (found)
            return found;
    }
    return nullptr;
}

CPDFField* CPDFAcroForm::find_top(const wchar_t* name, int limit)
{
    wchar_t own[GET_LIMIT + 1];
    for (int32_t i = 0; i < m_field_cnt; ++i) {
        if (!m_fields[i])
            continue;
        m_fields[i]->get_name(own, limit + 1);
        if (ucs_cmp(own, name) == 0)
            return m_fields[i];
    }
    return nullptr;
}

CPDFField* CPDFAcroForm::find(const wchar_t* name)
{
    return name[0] ? find_top(name, FIND_LIMIT) : nullptr;
}

CPDFField* CPDFAcroForm::get_field(const wchar_t* name)
{
    return find_top(name, GET_LIMIT);
}

CPDFField* CPDFAcroForm::get_field(const PDF_String& name)
{
    wchar_t wide[256];
    cvt_text_to_ucs(&name, wide, 255);
    return get_field(wide);
}
