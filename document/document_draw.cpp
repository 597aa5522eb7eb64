#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/fill/need_appearances.h"
#include "document/look/flatten.h"
#include "document/tags/structure.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* DRAWING = "draw the fields";

// What a field whose branch alone is loaded knows of its widgets: its own dictionary, which may be one, and the kids
// without a name.
void add_known_widgets(const CPDFField& field, std::vector<PDF_DRAWN_WIDGET>& widgets)
{
    widgets.push_back({field.m_ref, {}});
    for (int32_t i = 0; i < field.m_widget_cnt; ++i)
        widgets.push_back({field.m_widgets[i], {}});
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        CPDFField* kid = field.m_kids[i];
        if (kid && &value_field(*kid) != kid)
            add_known_widgets(*kid, widgets);
    }
}

}  // namespace

CPDFStatus CPDFDocument::State::ask_to_draw()
{
    if (asked_to_draw || signatures().is_signed())
        return {};
    if (set_need_appearances(*xref, root, root_ref) == PDF_CHANGE_RESULT::NO_MEMORY)
        return no_memory_to(DRAWING);
    asked_to_draw = true;
    return {};
}

CPDFStatus CPDFDocument::State::show(std::span<CPDFField* const> fields)
{
    const auto is_text = [](const CPDFField* field) {
        return field->m_type == FIELD_TEXT || field->m_type == FIELD_CHOICE;
    };
    const bool texts = std::any_of(fields.begin(), fields.end(), is_text);
    std::copy_if(fields.begin(), fields.end(), std::back_inserter(to_draw), is_text);
    CPDFFormCompute* const runner = scripts == PDF_SCRIPTS::ALL ? compute() : nullptr;
    if (CPDFFieldSandbox* sandbox = runner ? runner->sandbox() : nullptr)
        std::for_each(fields.begin(), fields.end(),
                      [sandbox](const CPDFField* field) { sandbox->value_changed(*field); });
    if (drawing == PDF_DRAWING::LEAVE_TO_VIEWERS)
        return texts ? ask_to_draw() : CPDFStatus();
    values_changed = values_changed || !fields.empty();
    return {};
}

CPDFRedraw& CPDFDocument::State::painter()
{
    if (!redraw) {
        const CPDFEntryView entry(xref.get(), form_entry());
        redraw.emplace(*xref, entry->dictionary());
    }
    redraw->format_with(compute());
    return *redraw;
}

std::vector<PDF_DRAWN_WIDGET> CPDFDocument::State::widgets_to_draw(CPDFField& field)
{
    std::vector<PDF_DRAWN_WIDGET> out;
    if (field.m_type == FIELD_BUTTON) {
        for (const PDF_BUTTON_CHOICE& choice : button_choices(field, bound_widgets()))
            out.push_back({choice.widget->m_ref, choice.state});
    } else if (form_loaded) {
        for (const CPDFAnnotWidget* widget : bound_widgets().widgets_of(field))
            out.push_back({widget->m_ref, {}});
    } else {
        add_known_widgets(field, out);
    }
    return out;
}

// The first script may be a format: what those of the document set before it is drawn then, too.
CPDFStatus CPDFDocument::State::draw_changed()
{
    CPDFStatus status;
    size_t first = 0;
    for (int round = 0; status.ok() && first < to_draw.size() && round < LIMIT_CALCULATION_ROUNDS; ++round) {
        std::unordered_set<CPDFField*> fields(to_draw.begin() + static_cast<std::ptrdiff_t>(first), to_draw.end());
        for (const size_t end = to_draw.size(); first < end; ++first) {
            CPDFField* const field = to_draw[first];
            if (!go_on(static_cast<double>(first) / static_cast<double>(to_draw.size())))
                return CPDFStatus::cancelled();
            if (fields.erase(field) == 0)
                continue;
            // A widget that only its page knows is found when the whole form is bound.
            if (painter().draw(*field, widgets_to_draw(*field)) == 0 && !form_loaded) {
                loaded_form();
                painter().draw(*field, widgets_to_draw(*field));
            }
        }
        bool stored = false;
        status = take_from_sandbox(stored, nullptr);
        if (status.ok() && stored)
            status = calculate(nullptr);
    }
    return status;
}

CPDFStatus CPDFDocument::State::draw()
{
    if (CPDFStatus status = to_calculate ? calculate(nullptr) : CPDFStatus(); !status.ok() || !values_changed)
        return status;
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    CPDFStatus status = draw_changed();
    if (status.ok() && needs_appearances(*xref, root) && !signatures().is_signed())
        status = draw_missing();
    if (status.ok() && redraw && redraw->left_some())
        status = ask_to_draw();
    if (status.ok() && redraw)
        status = redraw->finish(notes);
    if (status.ok() && memory.failed())
        status = no_memory_to(DRAWING);
    if (status.ok() && allowance.used_up())
        status = too_much_to(DRAWING);
    if (status.ok()) {
        values_changed = false;
        to_draw.clear();
    }
    return status;
}

// Afterwards the form need not ask viewers any more.
CPDFStatus CPDFDocument::State::draw_missing()
{
    bool goes_on = true;
    size_t done = 0;
    const size_t all = count_fields(loaded_form());
    for_each_field(loaded_form(), [&](CPDFField& field) {
        goes_on = goes_on && go_on(static_cast<double>(done++) / static_cast<double>(all));
        if (goes_on && &value_field(field) == &field && field.m_type != FIELD_UNKNOWN)
            painter().draw_missing(field, widgets_to_draw(field));
    });
    if (!goes_on)
        return CPDFStatus::cancelled();
    if (redraw && redraw->left_some())
        return {};
    const PDF_CHANGE_RESULT result = clear_need_appearances(*xref, root, root_ref);
    return result == PDF_CHANGE_RESULT::NO_MEMORY ? no_memory_to(DRAWING) : CPDFStatus();
}

// Gives the buttons of a group what they lack to show their states.
CPDFStatus CPDFDocument::State::draw_states(CPDFField& field)
{
    if (drawing == PDF_DRAWING::LEAVE_TO_VIEWERS)
        return {};
    const std::vector<PDF_BUTTON_CHOICE> choices = button_choices(field, bound_widgets());
    const auto lacks = [](const PDF_BUTTON_CHOICE& choice) { return !choice.widget->m_has_picture; };
    if (std::none_of(choices.begin(), choices.end(), lacks))
        return {};
    const VXFailureCheck memory;
    for (const PDF_BUTTON_CHOICE& choice : choices) {
        if (!lacks(choice))
            continue;
        drawn_buttons.push_back(choice.widget);
        painter().draw(field, {{choice.widget->m_ref, choice.state}});
        choice.widget->load(xref.get(), choice.widget->m_ref);
    }
    return memory.failed() ? no_memory_to(DRAWING) : CPDFStatus();
}

CPDFStatus CPDFDocument::State::show_anew(std::span<CPDFField* const> fields)
{
    const VXFailureCheck memory;
    for (CPDFField* field : fields) {
        if (field->m_type != FIELD_BUTTON && field->m_type != FIELD_SIGNATURE)
            continue;
        painter().draw_anew(*field, widgets_to_draw(*field));
        for (CPDFAnnotWidget* widget : bound_widgets().widgets_of(*field))
            widget->load(xref.get(), widget->m_ref);
    }
    if (memory.failed()) {
        redraw.reset();  // it would say so again when the document is saved
        return no_memory_to(DRAWING);
    }
    values_changed = true;
    return show(fields);
}

// Viewers show a widget without an appearance as well as they can, and draw all texts where the form asks them to.
CPDFStatus CPDFDocument::State::draw_all()
{
    if (needs_appearances(*xref, root)) {
        for_each_field(loaded_form(), [this](CPDFField& field) {
            if (&value_field(field) == &field && (field.m_type == FIELD_TEXT || field.m_type == FIELD_CHOICE))
                painter().draw(field, widgets_to_draw(field));
        });
    }
    CPDFStatus status = draw_missing();
    if (status.ok() && redraw && redraw->left_some())
        status = too_much_to("draw all that the form shows");
    return status.ok() && redraw ? redraw->finish(notes) : status;
}

CPDFStatus CPDFDocument::State::flatten()
{
    const CPDFReadAllowance allowance(reader->budget());
    CPDFStatus status = draw_all();
    if (!status.ok())
        return status;
    EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
    std::vector<PDF_REF> gone;
    status = flatten_form(target, gone);
    if (status.ok())
        status = edit_status(untag_widgets(target, tagged_widgets(target, gone)),
                             "the structure of the document can't be changed: it is damaged");
    if (status.ok() && allowance.used_up())
        status = too_much_to("flatten the form");
    forget_fields();
    adoption = CPDFAdoption();
    form.unload();
    return status;
}

void CPDFDocument::set_progress(PDF_PROGRESS progress)
{
    m_state->progress = std::move(progress);
    begin_progress();
}

void CPDFDocument::begin_progress()
{
    m_state->progress_calls = 0;
}

bool CPDFDocument::State::go_on(double done)
{
    constexpr int CALLS = 64;  // to this one for each to whoever asked
    return !progress || progress_calls++ % CALLS != 0 || progress(done);
}

bool CPDFDocument::go_on(double done)
{
    return m_state->go_on(done);
}

void CPDFDocument::set_drawing(PDF_DRAWING drawing)
{
    m_state->drawing = drawing;
}

const std::vector<std::string>& CPDFDocument::drawing_notes() const
{
    return m_state->notes;
}

CPDFStatus CPDFDocument::flatten(PDF_EDIT edit)
{
    return within_memory("flatten the form", [&] {
        State& state = *m_state;
        state.values_changed = state.values_changed || !state.to_draw.empty();
        CPDFStatus status = state.begin_edit({}, edit);
        if (status.ok() && edit != PDF_EDIT::FORCE && state.signatures().is_signed())
            status =
                CPDFStatus::failed(PDF_CODE::READ_ONLY, "the document is signed: flattening breaks its signatures");
        return status.ok() ? state.flatten() : status;
    });
}
