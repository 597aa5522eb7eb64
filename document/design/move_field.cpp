#include "document/design/move_field.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "core/alloc.h"
#include "document/edit/edit_array.h"
#include "document/edit/field_tree.h"
#include "document/edit/form_home.h"
#include "document/edit/inheritance.h"
#include "document/edit/new_name.h"
#include "document/edit/new_object.h"
#include "document/lookup/field_text.h"
#include "document/lookup/page_box.h"
#include "document/lookup/page_map.h"
#include "document/lookup/widget_binder.h"
#include "forms/acro_form.h"
#include "forms/field.h"

namespace {

// A widget on its way.
struct STEP {
    PDF_REF widget;
    PDF_PLACE from;  // page 0 where no page lists it
    PDF_PLACE to;
};

PDF_PLACE place_of(const EDIT_TARGET& target, const PDF_REF& widget)
{
    const PDF_BOX box = widget_box(target.xref, widget);
    return {{box.x0, box.y0, box.width(), box.height()}, target.pages.page_of_annotation(widget.num)};
}

// Where the widgets stand; none, with the reason in `refusals`, where the places that are given don't fit them.
std::vector<STEP> steps_from(EDIT_TARGET& target, const CPDFField& field, size_t given, CPDFRefusals& refusals)
{
    std::vector<STEP> steps;
    for (const CPDFAnnotWidget* widget : target.widgets.widgets_of(field)) {
        const PDF_PLACE from = place_of(target, widget->m_ref);
        steps.push_back({widget->m_ref, from, from});
    }
    const std::string shown = "field " + in_quotes(full_name(field)) + " has ";
    if (steps.empty())
        refusals.add(shown + "no widget that could stand elsewhere");
    if (steps.empty() || given <= 1 || given == steps.size())
        return steps;
    refusals.add(shown + std::to_string(steps.size()) +
                 (steps.size() == 1 ? " widget: give one rectangle"
                                    : " widgets: give a rectangle for each, or one for the first"));
    return {};
}

// Without a place of its own a widget follows the first one.
PDF_RECT rect_of(const std::vector<STEP>& steps, size_t index, const PDF_MOVE& move)
{
    PDF_RECT rect = steps[index].from.rect;
    if (move.places.empty())
        return rect;
    if (index < move.places.size())
        return move.places[index].rect;
    rect.x += move.places[0].rect.x - steps[0].from.rect.x;
    rect.y += move.places[0].rect.y - steps[0].from.rect.y;
    return rect;
}

std::vector<STEP> plan_steps(EDIT_TARGET& target, const CPDFField& field, const PDF_MOVE& move, CPDFRefusals& refusals)
{
    std::vector<STEP> steps = steps_from(target, field, move.places.size(), refusals);
    for (size_t i = 0; i < steps.size(); ++i) {
        PDF_PLACE& to = steps[i].to;
        to.rect = rect_of(steps, i, move);
        const size_t given = move.places.size();
        if (const int32_t page = given ? move.places[i < given ? i : 0].page : move.page)
            to.page = page;
        if (to.page)
            check_place(target, to, refusals);
        else
            refusals.add("a widget of field " + in_quotes(full_name(field)) + " is on no page: give one");
    }
    return steps;
}

// By how much the widget turns on its way.
int32_t turn_of(EDIT_TARGET& target, const STEP& step)
{
    constexpr int32_t CIRCLE = 360;
    const int32_t before = step.from.page ? upright_turn(target, step.from.page) : 0;
    return (upright_turn(target, step.to.page) - before + CIRCLE) % CIRCLE;
}

PDF_MOVED_LOOK look_of(EDIT_TARGET& target, const STEP& step)
{
    constexpr double SLACK = 0.01;
    const PDF_RECT& from = step.from.rect;
    const PDF_RECT& to = step.to.rect;
    const bool same_shape = std::fabs(from.width * to.height - from.height * to.width) <= SLACK * to.width * to.height;
    if (turn_of(target, step) || !same_shape)
        return PDF_MOVED_LOOK::SHAPE;
    return std::fabs(from.width - to.width) > SLACK || std::fabs(from.height - to.height) > SLACK
               ? PDF_MOVED_LOOK::SIZE
               : PDF_MOVED_LOOK::SAME;
}

PDF_MOVED_LOOK look_of(EDIT_TARGET& target, const std::vector<STEP>& steps)
{
    PDF_MOVED_LOOK look = PDF_MOVED_LOOK::SAME;
    for (const STEP& step : steps)
        look = std::max(look, look_of(target, step));
    return look;
}

// Puts the place into the dictionary of a widget.
void set_place(EDIT_TARGET& target, const STEP& step, CPDFDictionary& widget)
{
    CPDFObj rect;
    parse_syntax(rect_syntax(step.to.rect), rect);
    widget.set_item("Rect", &rect);
    widget.set_item_ref("P", target.pages.page_ref(step.to.page));
    const int32_t turn = turn_of(target, step);
    if (!turn)
        return;
    CPDFObj marks;
    resolve_obj(&target.xref, widget.get_item("MK"), marks);
    CPDFDictionary* dict = marks.dictionary() ? marks.dict : marks.set_dict();
    if (dict)
        dict->set_item_int("R", (resolve_integer(&target.xref, dict->get_item("R")) + turn) % 360);
    widget.set_item("MK", &marks);
}

PDF_CHANGE_RESULT take_step(EDIT_TARGET& target, const STEP& step)
{
    CPDFObj widget;
    target.xref.get_entity(widget, step.widget);
    if (!widget.dictionary())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    set_place(target, step, *widget.dict);
    return target.xref.take_changed(step.widget, widget) ? PDF_CHANGE_RESULT::STORED : PDF_CHANGE_RESULT::NO_MEMORY;
}

// Lists the widgets on the pages where they stand now.
PDF_CHANGE_RESULT turn_pages(EDIT_TARGET& target, const std::vector<STEP>& steps, std::vector<PDF_REF>& turned_over)
{
    std::unordered_set<uint32_t> gone;
    PDF_PAGE_WIDGETS listed;
    for (const STEP& step : steps) {
        if (step.from.page == step.to.page)
            continue;
        gone.insert(step.widget.num);
        listed[step.to.page].push_back(step.widget);
        turned_over.push_back(step.widget);
    }
    const PDF_CHANGE_RESULT result = take_off_pages(target, gone);
    return both(result, list_on_pages(target, listed));
}

// Stores a copy of a dictionary under a new number, with `change` made to it.
template <typename Change>
PDF_REF copy_object(EDIT_TARGET& target, const PDF_REF& ref, const Change& change)
{
    CPDFObj own;
    target.xref.get_entity(own, ref);
    if (!own.dictionary())
        return {0, 0};
    for (const char* key : {"Kids", "NM", "Parent", "StructParent", "T"})
        own.dict->remove_item(key);
    change(*own.dict);
    const PDF_REF copy = {target.xref.new_obj_num(), 0};
    return target.xref.take_changed(copy, own) ? copy : PDF_REF{0, 0};
}

void name_field(CPDFDictionary& dict, const CPDFField& field, const CPDFField* parent, const std::string& name)
{
    CPDFObj text;
    text.type = PDF_OBJ_STRING;
    text.str = pdf_string_of(last_part(name));
    dict.set_item("T", &text);
    if (parent)
        dict.set_item_ref("Parent", parent->m_ref);
    if (field.m_type == FIELD_SIGNATURE)
        dict.remove_item("V");
}

// The widgets of the copy, which show the field `copy`.
PDF_CHANGE_RESULT copy_widgets(EDIT_TARGET& target, const std::vector<STEP>& steps, const PDF_REF& copy)
{
    CPDFObj kids;
    PDF_PAGE_WIDGETS listed;
    for (const STEP& step : steps) {
        const PDF_REF widget = copy_object(target, step.widget, [&](CPDFDictionary& dict) {
            dict.set_item_ref("Parent", copy);
            set_place(target, step, dict);
        });
        CPDFArray* list = kids.array() ? kids.arr : kids.set_array();
        if (!widget.num || !list)
            return PDF_CHANGE_RESULT::NO_MEMORY;
        list->append_ref(widget);
        listed[step.to.page].push_back(widget);
    }
    const PDF_ENTRY_CHANGE change[] = {{"Kids", &kids}};
    return both(list_on_pages(target, listed), target.xref.change_entries(copy, change));
}

PDF_CHANGE_RESULT calculate_too(EDIT_TARGET& target, const CPDFField& field, const CPDFField& copy)
{
    return edit_array(target.xref, target.form.m_ref, "CO", [&](CPDFArray& order) {
        const auto is_field = [&field](const CPDFObj& at) {
            return at.type == PDF_OBJ_REF && at.ref.num == field.m_ref.num;
        };
        const bool there = std::any_of(order.items, order.items + order.count, is_field);
        if (there)
            order.append_ref(copy.m_ref);
        return there;
    });
}

// The copy with its widgets, in the tree; null where that can't be.
CPDFField* make_copy(EDIT_TARGET& target, const CPDFField& field, const std::string& name,
                     const std::vector<STEP>& steps)
{
    const VXFailureCheck memory;
    CPDFField* parent = make_groups(target, name);
    INHERITANCE inherited;
    collect_inherited(field, parent, inherited);
    const bool merged = steps.size() == 1 && steps[0].widget.num == field.m_ref.num;
    const PDF_REF ref = copy_object(target, field.m_ref, [&](CPDFDictionary& dict) {
        name_field(dict, field, parent, name);
        for (const PDF_ENTRY_CHANGE& change : inherited.changes)
            dict.set_item(change.key, change.value);
        if (merged)
            set_place(target, steps[0], dict);
    });
    if (!ref.num)
        return nullptr;
    const PDF_CHANGE_RESULT result =
        merged ? list_on_pages(target, {{steps[0].to.page, {ref}}}) : copy_widgets(target, steps, ref);
    return result == PDF_CHANGE_RESULT::STORED && !memory.failed() ? attach_field(target, parent, ref) : nullptr;
}

}  // namespace

CPDFStatus move_widgets(EDIT_TARGET& target, const CPDFField& field, const PDF_MOVE& move, PDF_MOVED_LOOK& look,
                        std::vector<PDF_REF>& turned_over)
{
    CPDFRefusals refusals;
    const std::vector<STEP> steps = plan_steps(target, field, move, refusals);
    if (CPDFStatus status = refusals.status(); !status.ok())
        return status;
    const VXFailureCheck memory;
    look = look_of(target, steps);
    PDF_CHANGE_RESULT result = PDF_CHANGE_RESULT::STORED;
    for (const STEP& step : steps)
        result = both(result, take_step(target, step));
    result = both(result, turn_pages(target, steps, turned_over));
    if (memory.failed())
        return no_memory_to_edit();
    return edit_status(result, "field " + in_quotes(full_name(field)) + " can't be moved: a widget or page is damaged");
}

CPDFStatus copy_field(EDIT_TARGET& target, const CPDFField& field, const std::string& name, const PDF_MOVE& move,
                      CPDFField*& copy, PDF_MOVED_LOOK& look)
{
    copy = nullptr;
    CPDFRefusals refusals;
    const std::vector<STEP> steps = plan_steps(target, field, move, refusals);
    check_new_name(target, name, steps.size() > 1 ? 1 : 0, refusals);
    if (field.m_name.len <= 0)
        refusals.add("a field without a name of its own only shows field " + in_quotes(full_name(field)));
    if (CPDFStatus status = refusals.status(); !status.ok())
        return status;
    const VXFailureCheck memory;
    if (CPDFStatus status = settle_form(target); !status.ok())
        return status;
    copy = make_copy(target, field, name, steps);
    PDF_CHANGE_RESULT result = copy ? PDF_CHANGE_RESULT::STORED : PDF_CHANGE_RESULT::NO_DICTIONARY;
    if (copy) {
        target.widgets.bind_added(target.xref, *copy, target.pages);
        result = calculate_too(target, field, *copy);
        look = look_of(target, steps);
    }
    if (memory.failed())
        return no_memory_to_edit();
    return edit_status(result, "field " + in_quotes(name) + " can't be made: what it is to be like is damaged");
}
