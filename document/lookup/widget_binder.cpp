#include "document/lookup/widget_binder.h"

#include <algorithm>
#include <unordered_map>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/lookup/page_map.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

constexpr CPDFKeySet SUBTYPE_KEYS{"Subtype"};
constexpr CPDFKeySet KIDS_KEYS{"Kids", "Subtype"};
constexpr CPDFKeySet ORPHAN_KEYS{"Parent", "Subtype", "T"};

bool is_widget(CPDFXRefTable& xref, const CPDFDictionary* dict)
{
    const CPDFEntryView subtype(&xref, dict ? dict->get_item(CPDFDictionary::sm_tag_subtype) : nullptr);
    return subtype->is_name("Widget");
}

}  // namespace

CPDFWidgetBinder::CPDFWidgetBinder() = default;

CPDFWidgetBinder::~CPDFWidgetBinder() = default;

std::span<CPDFAnnotWidget* const> CPDFWidgetBinder::widgets_of(const CPDFField& field) const
{
    const auto found = std::lower_bound(m_ranges.begin(), m_ranges.end(), field.m_ref.num,
                                        [](const RANGE& range, uint32_t num) { return range.field < num; });
    if (found == m_ranges.end() || found->field != field.m_ref.num)
        return {};
    return {found->first, found->count};
}

// Notes that the annotation `num` is bound; false when it is already, or can't be an object.
bool CPDFWidgetBinder::bind_first(uint32_t num)
{
    if (num > LIMIT_OBJECT_NUMBER)
        return false;
    if (num >= m_bound.size())
        m_bound.resize(num + 1);
    if (m_bound[num])
        return false;
    m_bound[num] = true;
    return true;
}

void CPDFWidgetBinder::add(CPDFXRefTable& xref, const PDF_REF& ref, CPDFField& shown, CPDFField& named)
{
    const auto bare = m_bare_types.find(ref.num);
    const int32_t type = bare != m_bare_types.end() ? bare->second : FIELD_UNKNOWN;
    if ((type != FIELD_UNKNOWN && type != shown.m_type) || !bind_first(ref.num))
        return;
    CPDFAnnotWidget& widget = m_widgets.emplace_back();
    widget.m_xref = &xref;
    widget.m_ref = ref;
    // The states of other kinds mean nothing: reading them would only cost time.
    if (!m_references_only && shown.m_type == FIELD_BUTTON && !widget.load(&xref, ref)) {
        m_widgets.pop_back();
        return;
    }
    m_links.push_back({named.m_ref.num, &widget});
    if (!shown.m_widget)
        shown.m_widget = &widget;
}

// Binds what a field and the fields under it know: a dictionary that is a widget, too, and "Kids" that are no fields.
// In "Kids" these and the fields may alternate, and options go by the order.
void CPDFWidgetBinder::add_tree(CPDFXRefTable& xref, CPDFField& field, const CPDFPageMap& pages)
{
    CPDFField& named = value_field(field);
    const bool mixed = field.m_widget_cnt > 0 && field.m_kid_cnt > 0;
    // A field that a page lists is a widget: reading it again would say no more.
    const bool listed = pages.page_of_annotation(field.m_ref.num) > 0;
    CPDFObj own;
    if (mixed || !listed)
        xref.get_entity(own, field.m_ref, mixed ? &KIDS_KEYS : &SUBTYPE_KEYS);
    const CPDFDictionary* dict = own.dictionary();
    if (listed || is_widget(xref, dict))
        add(xref, field.m_ref, field, named);
    const CPDFEntryView kids(&xref, mixed && dict ? dict->get_item("Kids") : nullptr);
    const CPDFArray* order = kids->array();
    int32_t widget = 0;
    int32_t kid = 0;
    const auto add_widget = [&] { add(xref, field.m_widgets[widget++], field, named); };
    const auto add_kid = [&] {
        if (CPDFField* at = field.m_kids[kid++])
            add_tree(xref, *at, pages);
    };
    for (int32_t i = 0; order && i < order->count; ++i) {
        const uint32_t num = order->items[i].type == PDF_OBJ_REF ? order->items[i].ref.num : 0;
        while (kid < field.m_kid_cnt && !field.m_kids[kid])
            ++kid;
        if (widget < field.m_widget_cnt && field.m_widgets[widget].num == num)
            add_widget();
        else if (kid < field.m_kid_cnt && field.m_kids[kid]->m_ref.num == num)
            add_kid();
    }
    while (widget < field.m_widget_cnt)
        add_widget();
    while (kid < field.m_kid_cnt)
        add_kid();
}

void CPDFWidgetBinder::bind(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages)
{
    clear();
    // "Fields" may list widgets of other fields: what has no name and nothing below comes last.
    std::vector<CPDFField*> last;
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        CPDFField* field = form.m_fields[i];
        if (field && field->m_name.len <= 0 && field->m_kid_cnt == 0) {
            last.push_back(field);
            m_bare_types.emplace(field->m_ref.num, field->m_type);
        }
    }
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        if (form.m_fields[i] && !m_bare_types.count(form.m_fields[i]->m_ref.num))
            add_tree(xref, *form.m_fields[i], pages);
    }
    for (CPDFField* field : last)
        add_tree(xref, *field, pages);
    m_bare_types.clear();
    bind_orphans(xref, form, pages);
    sort_links();
    m_is_bound = true;
}

void CPDFWidgetBinder::bind_added(CPDFXRefTable& xref, CPDFField& field, const CPDFPageMap& pages)
{
    if (!m_is_bound)
        return;
    add_tree(xref, field, pages);
    sort_links();
}

void CPDFWidgetBinder::bind_references(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages)
{
    m_references_only = true;
    bind(xref, form, pages);
    m_references_only = false;
}

void CPDFWidgetBinder::clear()
{
    m_widgets.clear();
    m_bound.clear();
    m_links.clear();
    m_sorted.clear();
    m_ranges.clear();
    m_is_bound = false;
}

// What is left are widgets that name a field as their parent though the field doesn't list them. One with a name is a
// field of its own.
void CPDFWidgetBinder::bind_orphans(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages)
{
    std::unordered_map<uint32_t, CPDFField*> fields;  // by object number; made when it is needed
    uint32_t last = 0;                                // one annotation may be on several pages
    for (const PDF_PAGE_ANNOTATION& annotation : pages.annotations()) {
        const bool again = last == annotation.num;
        last = annotation.num;
        if (again || (annotation.num < m_bound.size() && m_bound[annotation.num]))
            continue;
        const PDF_REF ref = annotation_ref(xref, annotation.num);
        CPDFObj own;
        xref.get_entity(own, ref, &ORPHAN_KEYS);
        const CPDFDictionary* dict = own.dictionary();
        if (!is_widget(xref, dict) || dict->get_item("T"))
            continue;
        if (fields.empty())
            for_each_field(form, [&fields](CPDFField& field) { fields.emplace(field.m_ref.num, &field); });
        const CPDFObj* parent = dict->get_item(CPDFDictionary::sm_tag_parent);
        const auto owner = parent && parent->type == PDF_OBJ_REF ? fields.find(parent->ref.num) : fields.end();
        if (owner != fields.end())
            add(xref, ref, *owner->second, value_field(*owner->second));
    }
}

// Brings the widgets of each field together, in the order of binding.
void CPDFWidgetBinder::sort_links()
{
    const auto by_field = [](const LINK& a, const LINK& b) { return a.field < b.field; };
    if (!std::is_sorted(m_links.begin(), m_links.end(), by_field))
        std::stable_sort(m_links.begin(), m_links.end(), by_field);
    std::vector<CPDFAnnotWidget*>& sorted = m_sorted.emplace_back(m_links.size());
    const size_t before = m_ranges.size();
    for (size_t i = 0; i < m_links.size(); ++i) {
        if (m_ranges.size() == before || m_ranges.back().field != m_links[i].field)
            m_ranges.push_back({m_links[i].field, 0, &sorted[i]});
        ++m_ranges.back().count;
        sorted[i] = m_links[i].widget;
    }
    m_links = {};
    // A new field mostly has a new object number.
    const auto by_number = [](const RANGE& a, const RANGE& b) { return a.field < b.field; };
    if (before > 0 && before < m_ranges.size() && !by_number(m_ranges[before - 1], m_ranges[before]))
        std::stable_sort(m_ranges.begin(), m_ranges.end(), by_number);
}
