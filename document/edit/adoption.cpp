#include "document/edit/adoption.h"

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include "core/dictionary.h"
#include "core/growable.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/edit/edit_array.h"
#include "document/edit/form_home.h"
#include "document/edit/new_object.h"
#include "document/lookup/page_map.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"
#include "forms/visit_set.h"

namespace {

constexpr CPDFKeySet CHAIN_KEYS{"Parent", "Subtype", "T", "Type"};

// What texts without a font of their own are shown in where the form says nothing.
std::string new_form(CPDFXRefTable& xref)
{
    const auto font = [&xref](const char* entries) {
        return ref_syntax(new_object(xref, std::string("<</Type/Font/Subtype/Type1/BaseFont") + entries + ">>"));
    };
    const std::string text = font("/Helvetica/Encoding/WinAnsiEncoding");
    const std::string marks = font("/ZapfDingbats");
    return "<</Fields[]/DA(/Helv 0 Tf 0 g)/DR<</Font<</Helv " + text + "/ZaDb " + marks + ">>>>>>";
}

// Pages and the like stand behind "Parent" in damaged files.
bool may_be_field(CPDFXRefTable& xref, const CPDFDictionary* dict)
{
    const CPDFEntryView type(&xref, dict ? dict->get_item("Type") : nullptr);
    return dict && (type->type == PDF_OBJ_NULL || type->is_name("Annot"));
}

bool is_some_field(const CPDFField& field)
{
    return field.m_type != FIELD_UNKNOWN || field.m_name.len > 0 || field.m_kid_cnt > 0;
}

int depth_of(const CPDFField* field)
{
    int depth = 0;
    for (; field; field = field->m_parent)
        ++depth;
    return depth;
}

// Whether the field takes a value or shows something.
bool is_terminal(CPDFField& field)
{
    const auto is_part = [](const CPDFField* kid) { return !kid || kid->m_name.len <= 0; };
    return field.m_type != FIELD_UNKNOWN && &value_field(field) == &field &&
           std::all_of(field.m_kids, field.m_kids + field.m_kid_cnt, is_part);
}

bool is_changed(CPDFXRefTable& xref, uint32_t num)
{
    const PDF_XREF_ENTRY* entry = xref.entry_of(num);
    return entry && entry->type == PDF_XREF_CHANGED;
}

bool has_changed(CPDFXRefTable& xref, CPDFField& top)
{
    bool changed = false;
    for_each_field(top, [&](const CPDFField& field) {
        changed = changed || is_changed(xref, field.m_ref.num) ||
                  std::any_of(field.m_widgets, field.m_widgets + field.m_widget_cnt,
                              [&xref](const PDF_REF& widget) { return is_changed(xref, widget.num); });
    });
    return changed;
}

// Finds the fields and hangs them into the form.
class Finder {
public:
    Finder(EDIT_TARGET& target, std::vector<CPDFField*>& adopted)
        : m_xref(target.xref), m_form(target.form), m_adopted(adopted)
    {
        for_each_field(m_form, [this](const CPDFField& field) { note(field); });
    }

    void run(const CPDFPageMap& pages)
    {
        std::vector<PDF_PAGE_ANNOTATION> unknown;
        for (const PDF_PAGE_ANNOTATION& at : pages.annotations()) {
            if (!m_known.has(at.num) && (unknown.empty() || unknown.back().num != at.num))
                unknown.push_back(at);
        }
        std::stable_sort(unknown.begin(), unknown.end(),
                         [](const PDF_PAGE_ANNOTATION& a, const PDF_PAGE_ANNOTATION& b) { return a.page < b.page; });
        for (const PDF_PAGE_ANNOTATION& at : unknown) {
            const PDF_REF ref = annotation_ref(m_xref, at.num);
            while (!m_known.has(at.num) && adopt_next(ref))
                ;
        }
    }

private:
    void note(const CPDFField& field)
    {
        m_known.add(field.m_ref.num);
        for (int32_t i = 0; i < field.m_widget_cnt; ++i)
            m_known.add(field.m_widgets[i].num);
    }

    CPDFField* field_of(uint32_t num)
    {
        if (m_fields.empty())
            for_each_field(m_form, [this](CPDFField& field) { m_fields.emplace(field.m_ref.num, &field); });
        const auto found = m_fields.find(num);
        return found == m_fields.end() ? nullptr : found->second;
    }

    // Adopts one more of what is above the widget, or the widget; false when there is nothing left to adopt.
    bool adopt_next(const PDF_REF& widget)
    {
        std::vector<PDF_REF> chain;
        CPDFField* above = nullptr;
        if (!read_chain(widget, chain, above))
            return false;
        for (auto at = chain.rbegin(); at != chain.rend(); ++at) {
            if (!m_refused.has(at->num) && adopt(*at, above))
                return true;
        }
        return false;
    }

    // The dictionaries from the widget up to one below a field of the form, or the last there is. False for what is no
    // widget, and for one that the field is going to be bound to anyhow.
    bool read_chain(const PDF_REF& widget, std::vector<PDF_REF>& chain, CPDFField*& above)
    {
        bool named = false;
        const auto is_met = [&chain](const PDF_REF& at) {
            return std::any_of(chain.begin(), chain.end(), [&at](const PDF_REF& met) { return met.num == at.num; });
        };
        for (PDF_REF at = widget; chain.size() < LIMIT_FIELD_DEPTH && !is_met(at);) {
            CPDFObj own;
            m_xref.get_entity(own, at, &CHAIN_KEYS);
            const CPDFDictionary* dict = own.dictionary();
            if (chain.empty() && !is_widget(dict))
                return false;
            if (!may_be_field(m_xref, dict))
                break;
            named = named || dict->get_item("T");
            chain.push_back(at);
            const CPDFObj* parent = dict->get_item(CPDFDictionary::sm_tag_parent);
            if (!parent || parent->type != PDF_OBJ_REF)
                break;
            at = parent->ref;
            above = m_known.has(at.num) ? field_of(at.num) : nullptr;
            if (above)
                break;
        }
        return !chain.empty() && (!above || chain.size() > 1 || named);
    }

    bool is_widget(const CPDFDictionary* dict)
    {
        const CPDFEntryView subtype(&m_xref, dict ? dict->get_item(CPDFDictionary::sm_tag_subtype) : nullptr);
        return subtype->is_name("Widget");
    }

    // Refuses what is no field, and what holds fields that the form has already under other names.
    bool adopt(const PDF_REF& ref, CPDFField* above)
    {
        std::unique_ptr<CPDFField> field(new CPDFField);
        if (!field || depth_of(above) >= LIMIT_FIELD_DEPTH)
            return false;
        if (above && above->m_type != FIELD_UNKNOWN) {
            field->m_type = above->m_type;
            field->m_flags = above->m_flags;
        }
        bool fits = field->load(above, &m_xref, ref) && is_some_field(*field);
        if (fits)
            for_each_field(*field, [&](const CPDFField& at) { fits = fits && !m_known.has(at.m_ref.num); });
        if (!fits || !make_room(above)) {
            m_refused.add(ref.num);
            return false;
        }
        for_each_field(*field, [this](CPDFField& at) {
            note(at);
            if (!m_fields.empty())
                m_fields.emplace(at.m_ref.num, &at);
        });
        m_adopted.push_back(field.get());
        field->m_index = above ? above->m_kid_cnt : 0;
        (above ? above->m_kids[above->m_kid_cnt++] : m_form.m_fields[m_form.m_field_cnt++]) = field.release();
        return true;
    }

    // Room for one field more, at the top of the form for null. Many at once, since there may be many.
    bool make_room(CPDFField* above)
    {
        const auto count = static_cast<size_t>(above ? above->m_kid_cnt : m_form.m_field_cnt);
        size_t& room = m_room[above];
        if (count < room)
            return true;
        if (!vx_set_room(above ? above->m_kids : m_form.m_fields, 2 * count + 1))
            return false;
        room = 2 * count + 1;
        return true;
    }

    CPDFXRefTable& m_xref;
    CPDFAcroForm& m_form;
    std::vector<CPDFField*>& m_adopted;
    CPDFNumberSet m_known;                                // the objects of the fields and their widgets
    CPDFNumberSet m_refused;                              // dictionaries that can't be adopted
    std::unordered_map<uint32_t, CPDFField*> m_fields;    // made when it is needed
    std::unordered_map<const CPDFField*, size_t> m_room;  // of the lists that grew
};

}  // namespace

void CPDFAdoption::adopt(EDIT_TARGET& target)
{
    m_form = target.form.m_ref;
    Finder(target, m_adopted).run(target.pages);
    if (m_adopted.empty())
        return;
    // A form that the file does not have.
    target.form.m_xref = &target.xref;
    target.form.m_root = &target.root;
    target.form.m_root_ref = target.root_ref;
    m_unlisted.insert(m_adopted.begin(), m_adopted.end());
    std::unordered_set<const CPDFField*> counted;
    for (CPDFField* top : m_adopted)
        for_each_field(*top, [&counted](CPDFField& field) {
            if (is_terminal(field))
                counted.insert(&field);
        });
    m_count = counted.size();
}

// What came last goes first, so each is the last of those beside it.
void CPDFAdoption::give_back(CPDFAcroForm& form)
{
    for (auto at = m_adopted.rbegin(); at != m_adopted.rend(); ++at) {
        CPDFField* const parent = (*at)->m_parent;
        int32_t& count = parent ? parent->m_kid_cnt : form.m_field_cnt;
        CPDFField** const list = parent ? parent->m_kids : form.m_fields;
        if (count > 0 && list[count - 1] == *at) {
            --count;
            delete *at;
        }
    }
    *this = CPDFAdoption();
}

bool CPDFAdoption::is_unlisted(const CPDFField& field) const
{
    const auto unlisted = [this](const CPDFField& at) { return m_unlisted.count(&at) > 0; };
    return !m_unlisted.empty() && nearest_field(field, unlisted);
}

CPDFStatus CPDFAdoption::list_changed(EDIT_TARGET& target)
{
    std::vector<CPDFField*> changed;
    for (CPDFField* field : m_adopted) {
        if (m_unlisted.count(field) && has_changed(target.xref, *field))
            changed.push_back(field);
    }
    return list(target, std::move(changed));
}

CPDFStatus CPDFAdoption::list_all(EDIT_TARGET& target)
{
    std::vector<CPDFField*> all;
    std::copy_if(m_adopted.begin(), m_adopted.end(), std::back_inserter(all),
                 [this](const CPDFField* field) { return m_unlisted.count(field) > 0; });
    CPDFStatus status = list(target, std::move(all));
    if (status.ok())
        m_adopted.clear();
    return status;
}

CPDFStatus CPDFAdoption::list(EDIT_TARGET& target, std::vector<CPDFField*> fields)
{
    if (fields.empty())
        return {};
    if (CPDFStatus status = settle_form(target, new_form); !status.ok())
        return status;
    const auto number_above = [](const CPDFField* field) { return field->m_parent ? field->m_parent->m_ref.num : 0; };
    std::stable_sort(fields.begin(), fields.end(),
                     [&](const CPDFField* a, const CPDFField* b) { return number_above(a) < number_above(b); });
    for (auto first = fields.begin(); first != fields.end();) {
        const CPDFField* const above = (*first)->m_parent;
        const auto end =
            std::find_if(first, fields.end(), [above](const CPDFField* field) { return field->m_parent != above; });
        const PDF_CHANGE_RESULT result = edit_array(
            target.xref, above ? above->m_ref : target.form.m_ref, above ? "Kids" : "Fields", [&](CPDFArray& list) {
                std::for_each(first, end, [&](const CPDFField* field) { list.append_ref(field->m_ref); });
                return true;
            });
        if (result != PDF_CHANGE_RESULT::STORED)
            return edit_status(result, "the form can't list the fields of its pages: it is damaged");
        for (; first != end; ++first)
            m_unlisted.erase(*first);
    }
    // The engine's operations count on the order of "Fields".
    CPDFAcroForm& form = target.form;
    std::stable_partition(form.m_fields, form.m_fields + form.m_field_cnt,
                          [this](const CPDFField* field) { return !m_unlisted.count(field); });
    if (std::any_of(fields.begin(), fields.end(), [](CPDFField* field) { return field->has_sign(); }))
        form.set_sign_flag(1);
    return {};
}

void CPDFAdoption::changes_dropped(CPDFAcroForm& form)
{
    if (m_adopted.empty())
        return;
    m_unlisted.insert(m_adopted.begin(), m_adopted.end());
    form.m_ref = m_form;
}

void CPDFAdoption::fields_changed(CPDFAcroForm& form)
{
    if (m_adopted.empty())
        return;
    std::unordered_set<const CPDFField*> there;
    for_each_field(form, [&there](const CPDFField& field) { there.insert(&field); });
    const auto is_gone = [&there](const CPDFField* field) { return !there.count(field); };
    m_adopted.erase(std::remove_if(m_adopted.begin(), m_adopted.end(), is_gone), m_adopted.end());
    for (auto at = m_unlisted.begin(); at != m_unlisted.end();)
        at = is_gone(*at) ? m_unlisted.erase(at) : std::next(at);
}
