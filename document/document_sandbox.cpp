// What scripts in the sandbox see of the document, and what of their work is stored.
#include <algorithm>
#include <iterator>
#include <utility>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/edit/set_field.h"
#include "document/look/widget_traits.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "file/file_reader.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* CALCULATING = "calculate the form";

// What storing something takes beside its bytes, in bytes that could be parsed meanwhile.
constexpr size_t CHANGE_WORK = 256;

size_t size_of(const SCRIPT_CHANGE& change)
{
    size_t size = change.field.size();
    for (const std::string& text : change.value)
        size += text.size();
    return size;
}

CPDFValue value_of(std::vector<std::string> texts)
{
    if (texts.size() > 1)
        return texts;
    return texts.empty() ? std::string() : std::move(texts.front());
}

// In the order of PDF_FIELD_KIND_ID.
constexpr SCRIPT_FIELD_TYPE TYPES[KIND_COUNT] = {
    SCRIPT_FIELD_TYPE::TEXT, SCRIPT_FIELD_TYPE::RADIO, SCRIPT_FIELD_TYPE::BUTTON, SCRIPT_FIELD_TYPE::CHECKBOX,
    SCRIPT_FIELD_TYPE::TEXT, SCRIPT_FIELD_TYPE::COMBO, SCRIPT_FIELD_TYPE::LIST,   SCRIPT_FIELD_TYPE::SIGNATURE};

SCRIPT_FIELD script_field_of(const CPDFField& field, const PDF_FIELD_SHAPE& shape, const PDF_SCRIPT_FIELDS& fields)
{
    constexpr std::pair<uint32_t, SCRIPT_FIELD_FLAG> FLAGS[] = {{FIELD_READ_ONLY, SCRIPT_READ_ONLY},
                                                                {FIELD_REQUIRED, SCRIPT_REQUIRED},
                                                                {FIELD_MULTILINE, SCRIPT_MULTILINE},
                                                                {FIELD_COMB, SCRIPT_COMB}};
    SCRIPT_FIELD out;
    out.name = full_name(field);
    out.type = TYPES[shape.kind->id];
    for (const auto& [from, to] : FLAGS)
        if (shape.flags & from)
            out.flags |= to;
    out.value = script_values_of(field, fields);
    if (PDF_VALUE_TEXT value = value_text(*field.m_xref, field.m_def_value); value.present)
        out.default_value = value.is_list ? std::move(value.items) : std::vector<std::string>{std::move(value.text)};
    out.char_limit = shape.max_length;
    for (int32_t i = 0; i < shape.options.count(); ++i)
        out.items.push_back({shape.options.shown(i), shape.options.value(i)});
    for (const PDF_BUTTON_CHOICE& choice : shape.buttons)
        out.items.push_back({choice.state, choice.export_value});
    return out;
}

// "Title" and the like, of the trailer's "Info" (ISO 32000-2, 14.3.3).
std::vector<SCRIPT_TEXT> document_info(CPDFXRefTable& xref, const CPDFDictionary& trailer)
{
    std::vector<SCRIPT_TEXT> info;
    const CPDFEntryView entries(&xref, trailer.get_item("Info"));
    for (const char* key : {"Title", "Author", "Subject", "Keywords", "Creator", "Producer"}) {
        PDF_String text;
        xref.read_obj_string(text, entries->dictionary() ? entries->dict->get_item(key) : nullptr);
        info.push_back({key, utf8_of(text)});
        text.release();
    }
    return info;
}

bool has_items(const CPDFField& field, const std::vector<SCRIPT_ITEM>& items)
{
    const CPDFFieldOptions options(field);
    bool same = options.count() == static_cast<int32_t>(items.size());
    for (int32_t i = 0; same && i < options.count(); ++i)
        same = options.shown(i) == items[static_cast<size_t>(i)].shown &&
               options.value(i) == items[static_cast<size_t>(i)].value;
    return same;
}

PDF_FIELD_CHANGE change_of(const CPDFField& field, const SCRIPT_TRAITS& traits)
{
    constexpr struct {
        SCRIPT_TRAIT trait;
        SCRIPT_FIELD_FLAG from;
        uint32_t to;
    } FLAGS[] = {{SCRIPT_TRAIT_READ_ONLY, SCRIPT_READ_ONLY, FIELD_READ_ONLY},
                 {SCRIPT_TRAIT_REQUIRED, SCRIPT_REQUIRED, FIELD_REQUIRED}};
    PDF_FIELD_CHANGE change;
    for (const auto& [trait, from, to] : FLAGS)
        if (traits.made & trait)
            (traits.flags & from ? change.set_flags : change.clear_flags) |= to;
    change.set_flags &= ~effective_flags(field);
    change.clear_flags &= effective_flags(field);
    if (!(traits.made & SCRIPT_TRAIT_ITEMS) || has_items(field, traits.items))
        return change;
    change.options.emplace();
    for (const SCRIPT_ITEM& item : traits.items)
        change.options->push_back({item.value, item.shown == item.value ? std::string() : item.shown});
    return change;
}

}  // namespace

PDF_SANDBOX_DOCUMENT CPDFDocument::State::sandbox_document()
{
    PDF_SANDBOX_DOCUMENT document;
    document.snapshot = [this] { return script_snapshot(); };
    document.scripts = [this]() -> const std::vector<PDF_DOCUMENT_SCRIPT>& { return document_scripts(); };
    document.fields = script_fields();
    return document;
}

SCRIPT_DOCUMENT CPDFDocument::State::script_snapshot()
{
    SCRIPT_DOCUMENT document;
    const CPDFWidgetBinder& bound = bound_widgets();
    const CPDFEntryView entry(xref.get(), form_entry());
    document.pages = pages().page_count();
    document.info = document_info(*xref, reader->trailer());
    const PDF_SCRIPT_FIELDS fields = script_fields();
    for_each_field(loaded_form(), [&](CPDFField& field) {
        if (field_kind(field).id == KIND_CONTAINER || field.m_name.len == 0)
            return;
        document.fields.push_back(script_field_of(field, shape_of(field, bound), fields));
        const std::span<CPDFAnnotWidget* const> shown = bound.widgets_of(field);
        document.fields.back().page = shown.empty() ? -1 : pages().page_of_annotation(shown[0]->m_ref.num) - 1;
        if (!shown.empty())
            read_widget_traits(field, shown[0]->m_ref, entry->dictionary(), document.fields.back());
    });
    return document;
}

const std::vector<PDF_DOCUMENT_SCRIPT>& CPDFDocument::State::document_scripts()
{
    if (!document_script_list)
        document_script_list = read_document_scripts(*xref, *root.dict);
    return *document_script_list;
}

CPDFStatus CPDFDocument::State::change_widgets(CPDFField& field, const SCRIPT_TRAITS& traits)
{
    if (!(traits.made & SCRIPT_TRAIT_DISPLAY))
        return {};
    if (CPDFFieldSandbox* sandbox = computer->sandbox())
        sandbox->traits_stored();
    for (const CPDFAnnotWidget* widget : bound_widgets().widgets_of(field)) {
        const PDF_CHANGE_RESULT result = set_widget_display(*xref, widget->m_ref, traits.display);
        if (result != PDF_CHANGE_RESULT::STORED)
            return edit_status(result, "object " + std::to_string(widget->m_ref.num) + " is missing or damaged");
    }
    return {};
}

// A value that the new items lack goes with the old ones.
CPDFStatus CPDFDocument::State::change_kind(CPDFField& field, const SCRIPT_TRAITS& traits)
{
    const PDF_FIELD_CHANGE change = change_of(field, traits);
    if (!change.options && !change.set_flags && !change.clear_flags)
        return {};
    changed_fields.push_back(&field);
    if (CPDFFieldSandbox* sandbox = computer->sandbox())
        sandbox->traits_stored();
    CPDFStatus status = ::change_field(field, change, bound_widgets());
    if (status.code == PDF_CODE::BAD_EDIT && change.options) {
        PDF_FILL_PLAN plan;
        status = plan_fill(field, std::string(), PDF_FILL::FORCE, PDF_WORDS::STATES_FIRST, widgets, plan);
        if (status.ok() && plan.action != PDF_FILL_PLAN::KEEP)
            status = carry_out(plan);
        if (status.ok())
            status = ::change_field(field, change, bound_widgets());
    }
    if (!status.ok() || !change.options)
        return status;
    CPDFField* const shown = &field;
    shown_options = {};
    if (redraw)
        redraw->options_changed();
    return show({&shown, 1});
}

CPDFStatus CPDFDocument::State::store_traits(const SCRIPT_TRAITS& traits)
{
    CPDFField* const field = names.find(loaded_form(), traits.field);
    if (!field)
        return {};
    CPDFStatus status = check_permission(reader->permits_editing());
    if (status.ok())
        status = signatures().check_edit(field);
    if (status.ok())
        status = change_kind(*field, traits);
    if (status.ok())
        status = change_widgets(*field, traits);
    if (status.ok() || status.code == PDF_CODE::NO_MEMORY)
        return status;
    note_calculation("what a script made of field " + in_quotes(traits.field) + " is not stored: " + status.text);
    return {};
}

CPDFStatus CPDFDocument::State::take_from_sandbox(bool& stored, std::vector<CPDFField*>* changed)
{
    CPDFFieldSandbox* const sandbox = computer ? computer->sandbox() : nullptr;
    if (!sandbox)
        return {};
    std::vector<SCRIPT_CHANGE> values = sandbox->take_changes();
    for (const SCRIPT_TRAITS& traits : sandbox->take_traits()) {
        if (!reader->budget().spend(CHANGE_WORK * (1 + traits.items.size())))
            return too_much_to(CALCULATING);
        if (CPDFStatus status = store_traits(traits); !status.ok())
            return status;
    }
    const PDF_SCRIPT_FIELDS fields = script_fields();
    for (SCRIPT_CHANGE& change : values) {
        if (!reader->budget().spend(CHANGE_WORK + size_of(change)))
            return too_much_to(CALCULATING);
        CPDFField* const field = fields.find(change.field);
        if (!field || script_values_of(*field, fields) == change.value)
            continue;
        bool one_stored = false;
        if (CPDFStatus status = store_calculated(*field, value_of(std::move(change.value)), one_stored); !status.ok())
            return status;
        if (!one_stored) {
            sandbox->value_changed(*field);
            continue;
        }
        stored = true;
        if (changed)
            changed->push_back(field);
    }
    return {};
}

void CPDFDocument::State::assume(const PDF_FILL_PLAN& plan)
{
    CPDFFieldSandbox* const sandbox = computer ? computer->sandbox() : nullptr;
    if (!sandbox || plan.action == PDF_FILL_PLAN::KEEP)
        return;
    std::vector<std::string> value;
    if (plan.action == PDF_FILL_PLAN::SET_TEXT) {
        value.push_back(plan.text);
    } else if (plan.action == PDF_FILL_PLAN::SET_OPTIONS) {
        const CPDFFieldOptions options(*plan.field);
        for (const int option : plan.options)
            value.push_back(options.value(option));
    } else if (plan.button < 0) {
        value.emplace_back(PDF_STATE_OFF);
    } else {
        value.push_back(button_choices(*plan.field, bound_widgets())[static_cast<size_t>(plan.button)].export_value);
    }
    sandbox->assume(*plan.field, std::move(value));
}

CPDFStatus CPDFDocument::assume(const PDF_FILL_PLAN& plan)
{
    return within_memory("check the values", [&] {
        m_state->assume(plan);
        return CPDFStatus();
    });
}

void CPDFDocument::drop_assumptions()
{
    if (CPDFFieldSandbox* sandbox = m_state->computer ? m_state->computer->sandbox() : nullptr)
        sandbox->drop_assumptions();
}

void CPDFDocument::State::note_scripts()
{
    CPDFFieldSandbox* const sandbox = computer ? computer->sandbox() : nullptr;
    if (computer && computer->skipped() > 0)
        skipped = std::max(skipped, computer->skipped() + document_scripts().size());
    if (!sandbox)
        return;
    for (std::string& fault : sandbox->take_faults())
        note_calculation(std::move(fault));
    std::vector<std::string> lines = sandbox->take_console();
    console.insert(console.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
}

void CPDFDocument::State::forget_scripts()
{
    note_scripts();
    computer.reset();
    calculation_order.reset();
    changed_fields.clear();
}

const std::vector<std::string>& CPDFDocument::calculation_notes() const
{
    m_state->note_scripts();
    return m_state->calculation_notes;
}

const std::vector<std::string>& CPDFDocument::script_console() const
{
    m_state->note_scripts();
    return m_state->console;
}

size_t CPDFDocument::skipped_scripts() const
{
    m_state->note_scripts();
    return m_state->skipped;
}
