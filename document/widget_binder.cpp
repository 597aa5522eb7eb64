#include "document/widget_binder.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/page_map.h"
#include "engine/annot_widget.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* WIDGET_KEYS[] = {"Subtype", "Parent"};
constexpr CPDFKeySet WIDGET_KEY_SET(WIDGET_KEYS);

CPDFField& named_field(CPDFField& field)
{
    CPDFField* at = &field;
    while (at->m_name.len <= 0 && at->m_parent)
        at = at->m_parent;
    return *at;
}

}  // namespace

CPDFWidgetBinder::CPDFWidgetBinder() = default;

CPDFWidgetBinder::~CPDFWidgetBinder() = default;

const std::vector<CPDFAnnotWidget*>& CPDFWidgetBinder::widgets_of(const CPDFField& field) const
{
    static const std::vector<CPDFAnnotWidget*> NONE;
    const auto found = m_by_field.find(field.m_ref.num);
    return found != m_by_field.end() ? found->second : NONE;
}

CPDFAnnotWidget* CPDFWidgetBinder::add(CPDFXRefTable& xref, const PDF_REF& ref, CPDFField& shown, CPDFField& named)
{
    if (!m_bound.emplace(ref.num, true).second)
        return nullptr;
    auto widget = std::make_unique<CPDFAnnotWidget>();
    if (!widget->load(&xref, ref))
        return nullptr;
    m_by_field[named.m_ref.num].push_back(widget.get());
    if (!shown.m_widget)
        shown.m_widget = widget.get();
    m_widgets.push_back(std::move(widget));
    return m_widgets.back().get();
}

// The widgets that the field itself knows: its own dictionary when it is one, and its "Kids" that are no fields.
void CPDFWidgetBinder::add_own(CPDFXRefTable& xref, CPDFField& shown, CPDFField& named)
{
    CPDFObj own;
    xref.get_entity(own, shown.m_ref, &WIDGET_KEY_SET);
    const CPDFDictionary* dict = own.dictionary();
    CPDFObj scratch;
    if (dict && view_obj(&xref, dict->get_item(CPDFDictionary::sm_tag_subtype), scratch)->is_name("Widget"))
        add(xref, shown.m_ref, shown, named);
    for (int32_t i = 0; i < shown.m_widget_cnt; ++i)
        add(xref, shown.m_widgets[i], shown, named);
}

void CPDFWidgetBinder::bind(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFPageMap& pages)
{
    for_each_field(form, [&](CPDFField& field) {
        CPDFField& named = named_field(field);
        m_owners.emplace(field.m_ref.num, OWNER{&field, &named});
        add_own(xref, field, named);
    });
    // What is left are widgets that name a field as their parent though the field doesn't list them.
    for (const PDF_PAGE_ANNOTATION& annotation : pages.annotations()) {
        if (m_bound.count(annotation.num))
            continue;
        const PDF_REF ref = {annotation.num, 0};
        CPDFObj own;
        xref.get_entity(own, ref, &WIDGET_KEY_SET);
        const CPDFDictionary* dict = own.dictionary();
        const CPDFObj* parent = dict ? dict->get_item(CPDFDictionary::sm_tag_parent) : nullptr;
        const auto owner = parent && parent->type == PDF_OBJ_REF ? m_owners.find(parent->ref.num) : m_owners.end();
        if (owner != m_owners.end())
            add(xref, ref, *owner->second.shown, *owner->second.named);
    }
}
