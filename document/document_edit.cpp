#include "document/document.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document_state.h"
#include "document/edit/remove_field.h"
#include "document/edit/rename_field.h"
#include "document/lookup/field_text.h"
#include "document/tags/structure.h"
#include "file/file_reader.h"
#include "forms/field.h"
#include "forms/field_walk.h"

// What every edit begins with: the whole form, the checks, and what would not survive the change.
CPDFStatus CPDFDocument::State::begin_edit(std::span<CPDFField* const> fields, PDF_EDIT edit)
{
    CPDFStatus status = load_whole_form();
    if (status.ok() && edit != PDF_EDIT::FORCE)
        status = check_permission(reader->permits_editing());
    if (status.ok())
        status = draw();
    if (!status.ok())
        return status;
    if (field_notes)
        field_notes->clear();
    redraw.reset();  // the form's fonts may change
    forget_scripts();
    shown_options = {};
    to_draw.clear();
    filled.clear();
    edited = true;
    if (edit == PDF_EDIT::FORCE)
        return {};
    status = signatures().check_edit(nullptr);
    for (size_t i = 0; i < fields.size() && status.ok(); ++i)
        status = signatures().check_edit(fields[i]);
    return status;
}

// Carries out `operation(EDIT_TARGET&)` on `fields`.
template <typename Operation>
CPDFStatus CPDFDocument::State::edit(std::span<CPDFField* const> fields, PDF_EDIT edit, const Operation& operation)
{
    return within_memory("change the form", [&] {
        CPDFStatus status = begin_edit(fields, edit);
        if (!status.ok())
            return status;
        const CPDFReadAllowance allowance(reader->budget());
        EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
        status = list_all();
        if (status.ok())
            status = operation(target);
        return allowance.used_up() ? too_much_to("change the form") : status;
    });
}

// The engine's operations need a form that lists all of its fields.
CPDFStatus CPDFDocument::State::list_all()
{
    EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
    return adoption.list_all(target);
}

namespace {

constexpr const char* DAMAGED_STRUCTURE = "the structure of the document can't be changed: it is damaged";

// Widgets of a tagged document stand in its structure.
CPDFStatus tag_field(EDIT_TARGET& target, const CPDFField& field)
{
    constexpr CPDFKeySet KEYS{"TU"};
    CPDFObj own;
    PDF_String text = {0, nullptr};
    target.xref.get_entity(own, field.m_ref, &KEYS);
    target.xref.read_obj_string(text, own.dictionary() ? own.dict->get_item("TU") : nullptr);
    const std::string label = utf8_of(text);
    text.release();
    return edit_status(tag_widgets(target, target.widgets.widgets_of(field), label), DAMAGED_STRUCTURE);
}

// The widgets of all fields under `top`.
std::vector<PDF_TAGGED_WIDGET> tagged_under(EDIT_TARGET& target, CPDFField& top)
{
    std::vector<PDF_REF> widgets;
    for_each_field(top, [&](const CPDFField& field) {
        for (const CPDFAnnotWidget* widget : target.widgets.widgets_of(field))
            widgets.push_back(widget->m_ref);
    });
    return tagged_widgets(target, widgets);
}

}  // namespace

// The widgets of a field that came into being or was moved are shown as `look` needs it.
CPDFStatus CPDFDocument::State::show_moved(CPDFField& field, PDF_MOVED_LOOK look)
{
    CPDFField* const at = &field;
    if (look == PDF_MOVED_LOOK::SHAPE)
        return show_anew({&at, 1});
    return look == PDF_MOVED_LOOK::SIZE ? show({&at, 1}) : CPDFStatus();
}

CPDFStatus CPDFDocument::add_field(const PDF_NEW_FIELD& field, PDF_EDIT edit, CPDFField** out)
{
    return m_state->edit({}, edit, [&](EDIT_TARGET& target) {
        m_state->bound_widgets();
        CPDFField* added = nullptr;
        CPDFStatus status = insert_field(target, field, added);
        if (status.ok())
            status = tag_field(target, *added);
        if (!status.ok())
            return status;
        if (out)
            *out = added;
        return m_state->show_anew({&added, 1});
    });
}

CPDFStatus CPDFDocument::design_fields(std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design,
                                       PDF_EDIT edit)
{
    return m_state->edit(fields, edit, [&](EDIT_TARGET& target) {
        CPDFRefusals refusals;
        check_design(target, fields, design, refusals);
        if (design.calculation && refusals.status().ok())
            m_state->check_circles(target, fields, *design.calculation, refusals);
        CPDFStatus status = refusals.status();
        m_state->bound_widgets();
        if (status.ok())
            status = ::design_fields(target, fields, design);
        if (status.ok() && design.calculation)
            status = m_state->order_calculations();
        if (design.sets_scripts())
            m_state->calculate_later();
        const bool shown = design.style.sets_any() || design.sets_scripts();
        return status.ok() && shown ? m_state->show_anew(fields) : status;
    });
}

CPDFStatus CPDFDocument::move_widgets(CPDFField& field, const PDF_MOVE& move, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) {
        m_state->bound_widgets();
        std::vector<PDF_REF> turned_over;
        PDF_MOVED_LOOK look = PDF_MOVED_LOOK::SAME;
        CPDFStatus status = ::move_widgets(target, field, move, look, turned_over);
        if (status.ok())
            status = edit_status(repage_widgets(target, tagged_widgets(target, turned_over)), DAMAGED_STRUCTURE);
        return status.ok() ? m_state->show_moved(field, look) : status;
    });
}

CPDFStatus CPDFDocument::copy_field(CPDFField& field, const std::string& name, const PDF_MOVE& move, PDF_EDIT edit,
                                    CPDFField** out)
{
    return m_state->edit({}, edit, [&](EDIT_TARGET& target) {
        m_state->bound_widgets();
        CPDFField* copy = nullptr;
        PDF_MOVED_LOOK look = PDF_MOVED_LOOK::SAME;
        CPDFStatus status = ::copy_field(target, field, name, move, copy, look);
        if (out)
            *out = copy;
        if (status.ok())
            status = tag_field(target, *copy);
        m_state->calculate_later();
        return status.ok() ? m_state->show_moved(*copy, look) : status;
    });
}

CPDFStatus CPDFDocument::order_tabs(const PDF_TABS& tabs, PDF_EDIT edit)
{
    return m_state->edit({}, edit, [&](EDIT_TARGET& target) {
        m_state->bound_widgets();
        return ::order_tabs(target, tabs);
    });
}

CPDFStatus CPDFDocument::remove_field(CPDFField& field, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) {
        if (field.has_sign())
            m_state->guard.reset();
        m_state->bound_widgets();
        const std::vector<PDF_TAGGED_WIDGET> tagged = tagged_under(target, field);
        CPDFStatus status = erase_field(target, field);
        return status.ok() ? edit_status(untag_widgets(target, tagged), DAMAGED_STRUCTURE) : status;
    });
}

CPDFStatus CPDFDocument::rename_field(CPDFField& field, const std::string& name, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) { return set_field_name(target, field, name); });
}

CPDFStatus CPDFDocument::move_field(CPDFField& field, CPDFField* parent, PDF_EDIT edit, CPDFField** out)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) {
        CPDFField* moved = nullptr;
        CPDFStatus status = set_field_parent(target, field, parent, moved);
        if (out)
            *out = moved;
        return status;
    });
}

CPDFStatus CPDFDocument::change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET&) {
        CPDFStatus status = ::change_field(field, change, m_state->bound_widgets());
        constexpr uint32_t DRAWN = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_COMB;
        const bool drawn =
            change.options || change.max_length || ((change.set_flags | change.clear_flags) & DRAWN) != 0;
        return status.ok() && drawn ? m_state->show({&at, 1}) : status;
    });
}
