#include <algorithm>
#include <utility>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "file/file_reader.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* CALCULATING = "calculate the form";

CPDFStatus about_field(const CPDFField& field, CPDFStatus status)
{
    if (!status.ok())
        status.text = "field " + in_quotes(full_name(field)) + ' ' + status.text;
    return status;
}

// In the order of PDF_FIELD_KIND_ID.
constexpr SCRIPT_FIELD_TYPE TYPES[KIND_COUNT] = {
    SCRIPT_FIELD_TYPE::TEXT, SCRIPT_FIELD_TYPE::RADIO, SCRIPT_FIELD_TYPE::BUTTON, SCRIPT_FIELD_TYPE::CHECKBOX,
    SCRIPT_FIELD_TYPE::TEXT, SCRIPT_FIELD_TYPE::COMBO, SCRIPT_FIELD_TYPE::LIST,   SCRIPT_FIELD_TYPE::SIGNATURE};

SCRIPT_FIELD script_field_of(const CPDFField& field, const PDF_FIELD_SHAPE& shape)
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
    out.value = script_values_of(field);
    out.default_value = value_text(*field.m_xref, field.m_def_value).joined();
    out.char_limit = shape.max_length;
    for (int32_t i = 0; i < shape.options.count(); ++i)
        out.items.push_back({shape.options.text(i), shape.options.value(i)});
    for (const PDF_BUTTON_CHOICE& choice : shape.buttons)
        out.items.push_back({choice.state, choice.export_value});
    return out;
}

}  // namespace

CPDFFormCompute* CPDFDocument::State::compute()
{
    if (scripts == PDF_SCRIPTS::OFF)
        return nullptr;
    if (!computer) {
        computer.emplace([this](std::string_view name) { return names.find(loaded_form(), name); });
        if (scripts == PDF_SCRIPTS::ALL)
            computer->use_sandbox([this] { return script_snapshot(); }, {script_seconds});
    }
    return &*computer;
}

SCRIPT_DOCUMENT CPDFDocument::State::script_snapshot()
{
    SCRIPT_DOCUMENT document;
    const CPDFWidgetBinder& bound = bound_widgets();
    document.pages = pages().page_count();
    for_each_field(loaded_form(), [&](CPDFField& field) {
        const PDF_FIELD_KIND& kind = field_kind(field);
        if (kind.id != KIND_CONTAINER && field.m_name.len > 0)
            document.fields.push_back(script_field_of(field, shape_of(field, bound)));
    });
    return document;
}

CPDFStatus CPDFDocument::State::take_from_sandbox(bool& stored)
{
    CPDFFieldSandbox* const sandbox = computer ? computer->sandbox() : nullptr;
    if (!sandbox)
        return {};
    for (SCRIPT_CHANGE& change : sandbox->take_changes()) {
        CPDFField* const field = names.find(loaded_form(), change.field);
        if (!field || script_values_of(*field) == change.value)
            continue;
        bool one_stored = false;
        std::string text = change.value.empty() ? std::string() : std::move(change.value.front());
        if (CPDFStatus status = store_calculated(*field, std::move(text), one_stored); !status.ok())
            return status;
        stored = stored || one_stored;
    }
    for (std::string& fault : sandbox->take_faults())
        note_calculation(std::move(fault));
    return {};
}

CPDFStatus CPDFDocument::State::commit(PDF_FILL_PLAN& plan, PDF_FILL fill)
{
    CPDFFormCompute* const runner = plan.action == PDF_FILL_PLAN::SET_TEXT ? compute() : nullptr;
    if (!runner)
        return {};
    std::string text = plan.text;
    if (CPDFStatus status = about_field(*plan.field, runner->commit(*plan.field, text)); !status.ok())
        return status;
    if (text == plan.text)
        return {};
    CPDFField& field = *plan.field;
    CPDFStatus status = plan_fill(field, text, fill, PDF_WORDS::STATES_FIRST, widgets, plan);
    plan.coerced = true;
    return status;
}

// The fields of "CO", of which the form is loaded only when it has some.
const std::vector<CPDFField*>& CPDFDocument::State::fields_to_calculate()
{
    if (calculation_order)
        return *calculation_order;
    std::vector<CPDFField*> order;
    const CPDFEntryView entry(xref.get(), form_entry());
    const CPDFDictionary* dict = entry->dictionary();
    const CPDFEntryView list(xref.get(), dict ? dict->get_item("CO") : nullptr);
    if (const CPDFArray* refs = list->array(); refs && refs->count > 0) {
        std::unordered_map<uint32_t, CPDFField*> fields;
        for_each_field(loaded_form(), [&fields](CPDFField& field) { fields.emplace(field.m_ref.num, &field); });
        for (int32_t i = 0; i < refs->count; ++i) {
            const auto found = refs->items[i].type == PDF_OBJ_REF ? fields.find(refs->items[i].ref.num) : fields.end();
            if (found != fields.end())
                order.push_back(found->second);
        }
    }
    return calculation_order.emplace(std::move(order));
}

void CPDFDocument::State::note_calculation(std::string sentence)
{
    if (std::find(calculation_notes.begin(), calculation_notes.end(), sentence) == calculation_notes.end())
        calculation_notes.push_back(std::move(sentence));
}

CPDFStatus CPDFDocument::State::store_calculated(CPDFField& field, std::string text, bool& stored)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status = about_field(field, compute()->validate(field, text));
    if (status.ok())
        status = plan_fill(field, text, PDF_FILL::FORCE, PDF_WORDS::STATES_FIRST, widgets, plan);
    if (status.ok())
        status = signatures().check_fill(field);
    if (!status.ok()) {
        note_calculation("the calculated value is not stored: " + status.text);
        return {};
    }
    stored = plan.action != PDF_FILL_PLAN::KEEP;
    return stored ? apply(plan) : status;
}

CPDFStatus CPDFDocument::State::calculate(std::vector<CPDFField*>* changed)
{
    to_calculate = false;
    CPDFFormCompute* const runner = compute();
    if (!runner || fields_to_calculate().empty())
        return {};
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    bool again = true;
    for (int round = 0; again && round < LIMIT_CALCULATION_ROUNDS; ++round) {
        again = false;
        for (CPDFField* each : *calculation_order) {
            CPDFField& field = value_field(*each);
            const std::string before = script_value_of(field);
            std::optional<std::string> text = runner->calculate(field, before);
            if (CPDFStatus status = take_from_sandbox(again); !status.ok())
                return status;
            if (!text || *text == before)
                continue;
            bool stored = false;
            if (CPDFStatus status = store_calculated(field, std::move(*text), stored); !status.ok())
                return status;
            again = again || stored;
            if (stored && changed && std::find(changed->begin(), changed->end(), &field) == changed->end())
                changed->push_back(&field);
        }
    }
    to_calculate = false;
    if (allowance.used_up())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the form takes more work to calculate than its size justifies");
    return memory.failed() ? no_memory_to(CALCULATING) : CPDFStatus();
}

CPDFStatus CPDFDocument::calculate(std::vector<CPDFField*>* changed)
{
    return within_memory(CALCULATING, [&] { return m_state->calculate(changed); });
}

std::optional<std::string> CPDFDocument::shown_text(const CPDFField& field)
{
    CPDFFormCompute* const runner = m_state->compute();
    if (!runner || (field.m_type != FIELD_TEXT && field.m_type != FIELD_CHOICE))
        return {};
    std::optional<PDF_SHOWN_TEXT> shown = runner->format(field, script_value_of(field));
    if (!shown)
        return {};
    return std::move(shown->text);
}

void CPDFDocument::set_scripts(PDF_SCRIPTS scripts, double seconds)
{
    m_state->scripts = scripts;
    m_state->script_seconds = seconds;
    m_state->computer.reset();
}

const std::vector<std::string>& CPDFDocument::calculation_notes() const
{
    return m_state->calculation_notes;
}

size_t CPDFDocument::skipped_scripts() const
{
    return m_state->computer ? m_state->computer->skipped() : 0;
}

void CPDFDocument::State::forget_scripts()
{
    computer.reset();
    calculation_order.reset();
    to_calculate = true;
    values_changed = true;
}
