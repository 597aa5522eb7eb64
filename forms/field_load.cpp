#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "engine/sign.h"
#include "forms/field.h"
#include "forms/field_kind.h"
#include "forms/load_watch.h"
#include "forms/visit_set.h"

namespace {

constexpr CPDFKeySet VALUE_KEY_SET{"V", "DV", "DA", "I"};

CPDFDictionary* read_dictionary(CPDFXRefTable* xref, const PDF_REF& ref, const CPDFVisitSet& visits, CPDFObj& out)
{
    xref->get_entity(out, ref, visits.watch ? &visits.watch->keys() : &FIELD_KEYS);
    CPDFDictionary* dict = out.dictionary();
    if (dict && visits.watch)
        visits.watch->see(ref, *dict);
    return dict;
}

// A widget that names its parent is a child field without a name of its own; one that doesn't is only a widget.
bool is_bare_widget(const CPDFDictionary& dict)
{
    return dict.get_item(CPDFDictionary::sm_tag_subtype) && !dict.get_item(CPDFDictionary::sm_tag_parent);
}

}  // namespace

int CPDFField::load(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref)
{
    CPDFVisitSet visits;
    for (const CPDFField* above = parent; above; above = above->m_parent) {
        visits.add(above->m_ref.num);
        ++visits.depth;
    }
    return load_once(parent, xref, ref, visits);
}

int CPDFField::load_once(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, CPDFVisitSet& visits)
{
    m_xref = xref;
    CPDFObj own;
    CPDFDictionary* dict = read_dictionary(xref, ref, visits, own);
    const bool put_off = dict && visits.put_off_kids && dict->get_item(CPDFDictionary::sm_tag_parent);
    if (!dict || put_off || !visits.add(ref.num))
        return 0;
    if (is_bare_widget(*dict) && !dict->get_item("T"))
        visits.bare.add(ref.num);
    load_entries(parent, xref, ref, *dict, visits);
    return 1;
}

void CPDFField::load_entries(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, CPDFDictionary& dict,
                             CPDFVisitSet& visits)
{
    load_head(parent, xref, ref, dict);
    load_kids(dict, visits);
    load_tail(dict);
}

// What the kids take over comes before them, the rest behind.
void CPDFField::load_head(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref, const CPDFDictionary& dict)
{
    m_xref = xref;
    m_parent = parent;
    m_ref = ref;
    m_inherited = 1;
    m_has_actions = dict.get_item("AA") != nullptr;
    m_has_rich_text = dict.get_item("RV") != nullptr;
    load_kind(dict);
    if (m_type == FIELD_TEXT)
        m_max_len = resolve_integer(xref, dict.get_item("MaxLen"));
    else if (m_type == FIELD_UNKNOWN)
        m_group_max_len = resolve_integer(xref, dict.get_item("MaxLen"));
    if (m_type == FIELD_SIGNATURE)
        load_signature(dict);
}

void CPDFField::load_tail(CPDFDictionary& dict)
{
    load_opts(dict);
    load_sels(dict.get_item("I"));
    load_name(dict);
    load_values(dict);
}

int CPDFField::load_alone(CPDFField* parent, CPDFXRefTable* xref, const PDF_REF& ref)
{
    CPDFObj own;
    xref->get_entity(own, ref, &FIELD_KEYS);
    CPDFDictionary* dict = own.dictionary();
    if (!dict)
        return 0;
    load_head(parent, xref, ref, *dict);
    load_tail(*dict);
    return 1;
}

void CPDFField::reload_value()
{
    CPDFObj own;
    m_xref->get_entity(own, m_ref, &VALUE_KEY_SET);
    CPDFDictionary* dict = own.dictionary();
    if (!dict)
        return;
    load_sels(dict->get_item("I"));
    load_values(*dict);
}

void CPDFField::reload_entries()
{
    const VXFailureCheck check;
    CPDFObj own;
    m_xref->get_entity(own, m_ref, &FIELD_KEYS);
    CPDFDictionary* dict = own.dictionary();
    if (!dict || check.failed())
        return;
    release_opts();
    delete m_sign;
    m_sign = nullptr;
    m_name.release();
    m_max_len = m_group_max_len = 0;
    m_type = m_parent ? m_parent->m_type : FIELD_UNKNOWN;
    m_flags = m_parent && m_type != FIELD_UNKNOWN ? m_parent->m_flags : 0;
    load_head(m_parent, m_xref, m_ref, *dict);
    load_tail(*dict);
    hand_down_kind();
}

// A kid with flags but no type of its own, or the other way round, keeps the rest as well.
void CPDFField::hand_down_kind()
{
    for (int32_t i = 0; i < m_kid_cnt; ++i) {
        CPDFField* kid = m_kids[i];
        if (!kid || !kid->m_inherited || m_type == FIELD_UNKNOWN)
            continue;
        kid->m_type = m_type;
        kid->m_flags = m_flags;
        kid->hand_down_kind();
    }
}

void CPDFField::show_value(const CPDFObj& value, const CPDFArray* sels)
{
    m_value.free();
    if (value.type == PDF_OBJ_NULL)
        m_value.copy_from(&m_def_value);
    else
        resolve_obj(m_xref, &value, m_value);
    take_sels(sels);
}

void CPDFField::load_kind(const CPDFDictionary& dict)
{
    const CPDFEntryView type(m_xref, dict.get_item("FT"));
    if (type->type == PDF_OBJ_NAME) {
        m_type = field_type(type->name_text(), m_type);
        m_inherited = 0;
    }
    const CPDFObj* flags = dict.get_item("Ff");
    m_has_flags = flags != nullptr;
    if (flags) {
        m_flags = static_cast<uint32_t>(resolve_integer(m_xref, flags));
        m_inherited = 0;
    }
}

void CPDFField::load_signature(const CPDFDictionary& dict)
{
    const CPDFEntryView value(m_xref, dict.get_item("V"));
    const CPDFDictionary* signature = value->dictionary();
    m_sign = signature ? new CPDFSign : nullptr;
    if (m_sign)
        m_sign->load(m_xref, signature);
}

void CPDFField::load_kids(const CPDFDictionary& dict, CPDFVisitSet& visits)
{
    const CPDFObj* entry = dict.get_item("Kids");
    if (!entry)
        return;
    const CPDFEntryView kids_view(m_xref, entry);
    const CPDFArray* kids = kids_view->array();
    if (!kids || kids->count == 0)
        return;
    const auto room = static_cast<size_t>(kids->count);
    m_kids = vx_alloc_array<CPDFField*>(room);
    m_widgets = vx_alloc_array<PDF_REF>(room);
    if (!m_kids || !m_widgets)
        return;
    std::memset(m_kids, 0, room * sizeof(CPDFField*));
    ++visits.depth;
    for (int32_t i = 0; i < kids->count; ++i) {
        if (kids->items[i].type == PDF_OBJ_REF)
            load_kid(kids->items[i].ref, visits);
    }
    --visits.depth;
}

void CPDFField::load_kid(const PDF_REF& ref, CPDFVisitSet& visits)
{
    if (ref.num == m_ref.num) {
        m_widgets[m_widget_cnt++] = ref;
        return;
    }
    // A dictionary is loaded once, but may be a widget of other fields as well.
    const bool loaded = visits.has(ref.num);
    if (loaded && !visits.bare.has(ref.num))
        return;
    CPDFObj fetched;
    CPDFDictionary* dict = read_dictionary(m_xref, ref, visits, fetched);
    if (!dict)
        return;
    if (is_bare_widget(*dict)) {
        const CPDFEntryView type(m_xref, dict->get_item("FT"));
        if (!loaded || field_type(type->name_text(), m_type) == m_type)
            m_widgets[m_widget_cnt++] = ref;
        return;
    }
    if (visits.depth >= LIMIT_FIELD_DEPTH || !visits.add(ref.num))
        return;
    CPDFField* kid = new_kid();
    if (!kid)
        return;
    m_kids[m_kid_cnt++] = kid;
    kid->load_entries(this, m_xref, ref, *dict, visits);
}

void CPDFField::load_opts(CPDFDictionary& dict)
{
    CPDFObj* entry = dict.get_item("Opt");
    if (!entry)
        return;
    CPDFObj list;
    take_obj(m_xref, entry, list);
    CPDFArray* opts = list.array();
    m_opts = opts ? vx_alloc_array<PDF_FIELD_OPT>(static_cast<size_t>(opts->count)) : nullptr;
    if (!m_opts)
        return;
    m_opt_cnt = opts->count;
    for (int32_t i = 0; i < m_opt_cnt; ++i) {
        CPDFObj opt;
        take_obj(m_xref, &opts->items[i], opt);
        PDF_FIELD_OPT& record = m_opts[i];
        record = {{0, nullptr}, {0, nullptr}};
        if (const CPDFArray* pair = opt.array()) {
            m_xref->read_obj_string(record.val, pair->at(0));
            m_xref->read_obj_string(record.text, pair->at(1));
        } else if (opt.type == PDF_OBJ_STRING) {
            record.val.take(opt.str);
        }
    }
}

void CPDFField::load_sels(const CPDFObj* entry)
{
    const CPDFEntryView sels(m_xref, entry);
    take_sels(sels->array());
}

void CPDFField::take_sels(const CPDFArray* sels)
{
    VXFree(m_sels);
    m_sel_cnt = 0;
    m_sels = sels ? vx_alloc_array<int32_t>(static_cast<size_t>(sels->count)) : nullptr;
    for (; m_sels && m_sel_cnt < sels->count; ++m_sel_cnt)
        m_sels[m_sel_cnt] = resolve_integer(m_xref, &sels->items[m_sel_cnt]);
}

void CPDFField::load_name(CPDFDictionary& dict)
{
    CPDFObj name;
    take_obj(m_xref, dict.get_item("T"), name);
    if (name.type == PDF_OBJ_STRING)
        m_name.take(name.str);
}

void CPDFField::load_values(CPDFDictionary& dict)
{
    take_obj(m_xref, dict.get_item("V"), m_value);
    take_obj(m_xref, dict.get_item("DV"), m_def_value);
    take_obj(m_xref, dict.get_item("DA"), m_da);
    if (m_value.type == PDF_OBJ_NULL)
        m_value.copy_from(&m_def_value);
}
