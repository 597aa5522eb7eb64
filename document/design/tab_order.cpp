#include "document/design/tab_order.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "core/alloc.h"
#include "document/edit/edit_array.h"
#include "document/edit/page_annots.h"
#include "document/lookup/page_box.h"
#include "document/lookup/page_map.h"
#include "document/lookup/widget_binder.h"
#include "document/tags/structure.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"

namespace {

// Widgets by object number, and what puts them in order where they are not ordered by place.
using RANKS = std::unordered_map<uint32_t, int32_t>;
constexpr int32_t LAST = std::numeric_limits<int32_t>::max();

// A widget as the page shows it: x to the right, y down.
struct SHOWN_WIDGET {
    PDF_REF ref = {0, 0};
    PDF_BOX box = {0, 0, 0, 0};
};

// The box on a page that is shown with this turn.
PDF_BOX turned(const PDF_BOX& box, int32_t turn)
{
    switch (turn) {
    case 90:
        return {box.y0, box.x0, box.y1, box.x1};
    case 180:
        return {-box.x1, box.y0, -box.x0, box.y1};
    case 270:
        return {-box.y1, -box.x1, -box.y0, -box.x0};
    default:
        return {box.x0, -box.y1, box.x1, -box.y0};
    }
}

// Sorts by rows: what begins above the middle of the first in a row stands in it.
void sort_rows(std::vector<SHOWN_WIDGET>& widgets)
{
    const auto above = [](const SHOWN_WIDGET& a, const SHOWN_WIDGET& b) { return a.box.y0 < b.box.y0; };
    const auto left = [](const SHOWN_WIDGET& a, const SHOWN_WIDGET& b) { return a.box.x0 < b.box.x0; };
    std::stable_sort(widgets.begin(), widgets.end(), above);
    for (auto row = widgets.begin(); row != widgets.end();) {
        const double middle = (row->box.y0 + row->box.y1) / 2;
        const auto end =
            std::find_if(row, widgets.end(), [middle](const SHOWN_WIDGET& at) { return at.box.y0 > middle; });
        std::stable_sort(row, end, left);
        row = end;
    }
}

// Columns are the rows of the page laid on its side.
void swap_axes(std::vector<SHOWN_WIDGET>& widgets)
{
    for (SHOWN_WIDGET& at : widgets)
        at.box = {at.box.y0, at.box.x0, at.box.y1, at.box.x1};
}

class CPDFTabOrder {
public:
    CPDFTabOrder(EDIT_TARGET& target, const PDF_TABS& tabs) : m_target(target), m_tabs(tabs)
    {
        for_each_field(target.form, [this](const CPDFField& field) { add_widgets(field, LAST, m_ranks); });
        if (tabs.by == PDF_TAB_ORDER::STRUCTURE) {
            for (const auto& [num, place] : structure_order(target)) {
                if (const auto known = m_ranks.find(num); known != m_ranks.end())
                    known->second = place;
            }
        }
        RANKS first;
        for (size_t i = 0; i < tabs.fields.size(); ++i)
            for_each_field(*tabs.fields[i],
                           [&](const CPDFField& field) { add_widgets(field, static_cast<int32_t>(i), first); });
        for (const auto& [num, rank] : first)
            m_ranks[num] = rank;
    }

    PDF_CHANGE_RESULT order(int32_t page)
    {
        const PDF_REF& ref = m_target.pages.page_ref(page);
        bool any = false;
        PDF_CHANGE_RESULT result = m_lists.make_own(page);
        result = both(result, edit_array(m_target.xref, ref, "Annots", [&](CPDFArray& list) {
                          return order_list(list, read_page_box(m_target.xref, ref).rotate, any);
                      }));
        if (!any)
            return result;
        constexpr const char* TABS[] = {"R", "C", "S", "W"};
        CPDFObj value;
        value.set_name(TABS[static_cast<size_t>(m_tabs.by)]);
        const PDF_ENTRY_CHANGE change[] = {{"Tabs", &value}};
        return both(result, m_target.xref.change_entries(ref, change));
    }

private:
    void add_widgets(const CPDFField& field, int32_t rank, RANKS& ranks)
    {
        for (const CPDFAnnotWidget* widget : m_target.widgets.widgets_of(field))
            ranks.emplace(widget->m_ref.num, rank);
    }

    // The widgets change places among themselves; other annotations stay where they are.
    bool order_list(CPDFArray& list, int32_t turn, bool& any)
    {
        std::vector<int32_t> slots;
        std::vector<SHOWN_WIDGET> widgets;
        for (int32_t i = 0; i < list.count; ++i) {
            const CPDFObj& entry = list.items[i];
            if (entry.type != PDF_OBJ_REF || !m_ranks.count(entry.ref.num))
                continue;
            slots.push_back(i);
            widgets.push_back({entry.ref, turned(widget_box(m_target.xref, entry.ref), turn)});
        }
        any = !slots.empty();
        sort(widgets);
        bool changed = false;
        for (size_t i = 0; i < slots.size(); ++i) {
            CPDFObj& entry = list.items[slots[i]];
            changed = changed || entry.ref.num != widgets[i].ref.num;
            entry.set_ref(widgets[i].ref);
        }
        return changed;
    }

    void sort(std::vector<SHOWN_WIDGET>& widgets)
    {
        if (m_tabs.by == PDF_TAB_ORDER::ROWS) {
            sort_rows(widgets);
        } else if (m_tabs.by == PDF_TAB_ORDER::COLUMNS) {
            swap_axes(widgets);
            sort_rows(widgets);
        } else {
            std::stable_sort(widgets.begin(), widgets.end(), [this](const SHOWN_WIDGET& a, const SHOWN_WIDGET& b) {
                return m_ranks[a.ref.num] < m_ranks[b.ref.num];
            });
        }
    }

    EDIT_TARGET& m_target;  // borrowed
    CPDFAnnotationLists m_lists{m_target.xref, m_target.pages};
    const PDF_TABS& m_tabs;  // borrowed
    RANKS m_ranks;           // of all widgets of the form
};

}  // namespace

CPDFStatus order_tabs(EDIT_TARGET& target, const PDF_TABS& tabs)
{
    const int32_t pages = target.pages.page_count();
    if (tabs.page < 0 || tabs.page > pages)
        return CPDFStatus::failed(PDF_CODE::BAD_EDIT, "there is no page " + std::to_string(tabs.page) +
                                                          ": the document has " + std::to_string(pages));
    if (tabs.by == PDF_TAB_ORDER::STRUCTURE && !is_tagged(target))
        return CPDFStatus::failed(PDF_CODE::BAD_EDIT,
                                  "the document is not tagged, so that there is no structure to go by: give rows, "
                                  "columns or names of fields");
    const VXFailureCheck memory;
    CPDFTabOrder order(target, tabs);
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (int32_t page = tabs.page ? tabs.page : 1; page <= (tabs.page ? tabs.page : pages); ++page) {
        if (target.pages.page_ref(page).num)
            result = both(result, order.order(page));
    }
    if (memory.failed())
        return no_memory_to_edit();
    return edit_status(result, "a page can't be changed: it is damaged");
}
