#include "document/edit/remove_field.h"

#include <unordered_set>

#include "document/edit/edit_array.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/page_place.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_map.h"
#include "document/lookup/widget_binder.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

using NumberSet = std::unordered_set<uint32_t>;

// Whether the field shows nothing by itself, with at most `kids` fields under it.
bool is_bare(const EDIT_TARGET& target, const CPDFField& group, int32_t kids)
{
    return group.m_kid_cnt <= kids && group.m_widget_cnt == 0 && !target.pages.page_of_annotation(group.m_ref.num);
}

// The topmost group in which there is nothing but `field`, or the field itself. What a field without a name shows is
// not its own: the field above it stays.
CPDFField& with_empty_groups(const EDIT_TARGET& target, CPDFField& field)
{
    CPDFField* top = &field;
    while (top->m_parent && top->m_name.len > 0 && is_bare(target, *top->m_parent, 1))
        top = top->m_parent;
    return *top;
}

PDF_CHANGE_RESULT remove_from_order(EDIT_TARGET& target, const NumberSet& gone)
{
    return edit_array(target.xref, target.form.m_ref, "CO", [&gone](CPDFArray& order) {
        return remove_references(order, [&gone](uint32_t num) { return gone.count(num) > 0; });
    });
}

// The objects of the fields and of all that shows them.
NumberSet objects_of(CPDFField& top, const CPDFWidgetBinder& widgets)
{
    NumberSet objects;
    for_each_field(top, [&](const CPDFField& field) {
        objects.insert(field.m_ref.num);
        for (int32_t i = 0; i < field.m_widget_cnt; ++i)
            objects.insert(field.m_widgets[i].num);
        for (const CPDFAnnotWidget* widget : widgets.widgets_of(field))
            objects.insert(widget->m_ref.num);
    });
    return objects;
}

bool has_signature_field(CPDFField& top)
{
    bool found = false;
    for_each_field(top, [&found](const CPDFField& field) { found = found || field.m_type == FIELD_SIGNATURE; });
    return found;
}

void clear_signature_flags(CPDFAcroForm& form)
{
    for (int32_t i = 0; i < form.m_field_cnt; ++i) {
        if (form.m_fields[i] && has_signature_field(*form.m_fields[i]))
            return;
    }
    form.calc_sign_flag();
}

}  // namespace

CPDFStatus erase_field(EDIT_TARGET& target, CPDFField& field)
{
    const VXFailureCheck memory;
    CPDFField& top = with_empty_groups(target, field);
    const std::string name = "field " + in_quotes(full_name(field));
    const NumberSet gone = objects_of(top, target.widgets);
    const bool signature = has_signature_field(top);
    if (CPDFStatus status = settle_form(target); !status.ok())
        return status;
    const PDF_CHANGE_RESULT detached = detach_field(target, top);
    if (detached != PDF_CHANGE_RESULT::STORED)
        return edit_status(detached, name + " can't be removed: the list that holds it is damaged");
    const PDF_CHANGE_RESULT lists = both(take_off_pages(target, gone), remove_from_order(target, gone));
    if (signature)
        clear_signature_flags(target.form);
    if (memory.failed())
        return no_memory_to_edit();
    return edit_status(lists, name + " is removed, but a page that shows it can't be changed");
}

PDF_CHANGE_RESULT erase_empty_groups(EDIT_TARGET& target, CPDFField* group, const CPDFField* keep)
{
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    while (group && group != keep && is_bare(target, *group, 0) && result == PDF_CHANGE_RESULT::STORED) {
        CPDFField* above = group->m_parent;
        const uint32_t num = group->m_ref.num;
        result = detach_field(target, *group);
        if (result == PDF_CHANGE_RESULT::STORED)
            result = remove_from_order(target, {num});
        group = above;
    }
    return result;
}
