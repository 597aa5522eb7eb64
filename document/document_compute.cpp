#include <algorithm>
#include <utility>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/look/shown_value.h"
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

// What a person would have typed or chosen for a value of this plan; nothing where that is no text.
std::optional<std::string> committed_text(const PDF_FILL_PLAN& plan)
{
    if (plan.action == PDF_FILL_PLAN::SET_TEXT)
        return plan.text;
    if (plan.action != PDF_FILL_PLAN::SET_OPTIONS || plan.options.size() != 1 ||
        field_kind(*plan.field).id != KIND_COMBO)
        return {};
    return CPDFFieldOptions(*plan.field).shown(plan.options.front());
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

// Which field is to be calculated next. One is calculated again only when another one's script has changed something since, so
// that a field that counts up counts once.
class CalculationOrder {
public:
    // `fields` are borrowed.
    explicit CalculationOrder(const std::vector<CPDFField*>& fields) : m_fields(fields), m_ran(fields.size(), -1) {}

    // Null when nothing is left to calculate, or the bound is reached.
    CPDFField* next()
    {
        for (; m_round < LIMIT_CALCULATION_ROUNDS; ++m_round, m_at = 0) {
            for (; m_at < m_fields.size(); ++m_at) {
                if (!is_due(m_at))
                    continue;
                m_ran[m_at] = m_changes;
                return &value_field(*m_fields[m_at++]);
            }
            if (at_rest())
                return nullptr;
        }
        return nullptr;
    }

    // The script of `field` has changed a value.
    void changed(const CPDFField* field)
    {
        if (m_last_field != field)
            m_last_of_others = m_changes;
        m_last_field = field;
        ++m_changes;
    }

    bool at_rest() const
    {
        for (size_t i = 0; i < m_fields.size(); ++i)
            if (is_due(i))
                return false;
        return true;
    }

private:
    bool is_due(size_t index) const
    {
        const bool own = m_last_field == &value_field(*m_fields[index]);
        return m_ran[index] < (own ? m_last_of_others : m_changes);
    }

    const std::vector<CPDFField*>& m_fields;
    std::vector<int64_t> m_ran;  // for each field the number of changes when it was calculated; -1 for never
    const CPDFField* m_last_field = nullptr;  // whose script made the last change
    int64_t m_changes = 0;
    int64_t m_last_of_others = 0;  // number of changes before those that this one made in a row
    size_t m_at = 0;
    int m_round = 0;
};

}  // namespace

CPDFFormCompute* CPDFDocument::State::compute()
{
    if (scripts == PDF_SCRIPTS::OFF)
        return nullptr;
    if (!computer) {
        computer.emplace([this](std::string_view name) { return names.find(loaded_form(), name); }, reader->budget());
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
    const std::optional<std::string> before = committed_text(plan);
    CPDFFormCompute* const runner = before ? compute() : nullptr;
    if (!runner)
        return {};
    std::string text = *before;
    if (CPDFStatus status = about_field(*plan.field, runner->commit(*plan.field, text)); !status.ok())
        return status;
    if (text == *before)
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
    if (calculation_noted.insert(sentence).second)
        calculation_notes.push_back(std::move(sentence));
}

CPDFStatus CPDFDocument::State::store_calculated(CPDFField& field, std::string text, bool& stored)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status = about_field(field, compute()->validate(field, text));
    if (status.ok())
        status = plan_fill(field, text, PDF_FILL::FORCE, PDF_WORDS::EXPORT_FIRST,
                           field.m_type == FIELD_BUTTON ? bound_widgets() : widgets, plan);
    if (status.ok())
        status = signatures().check_fill(field);
    if (!status.ok()) {
        note_calculation("the calculated value is not stored: " + status.text);
        return {};
    }
    stored = plan.action != PDF_FILL_PLAN::KEEP;
    return stored ? carry_out(plan) : status;
}

// The budget is one for all rounds, so what is stored meanwhile takes its part of it.
CPDFStatus CPDFDocument::State::calculate(std::vector<CPDFField*>* changed)
{
    to_calculate = false;
    CPDFFormCompute* const runner = compute();
    if (!runner || fields_to_calculate().empty())
        return {};
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    std::unordered_set<const CPDFField*> listed;
    if (changed)
        listed.insert(changed->begin(), changed->end());
    CalculationOrder order(*calculation_order);
    while (CPDFField* field = order.next()) {
        if (allowance.used_up())
            return too_much_to(CALCULATING);
        const std::string before = script_value_of(*field);
        std::optional<std::string> text = runner->calculate(*field, before);
        bool others_changed = false;
        CPDFStatus status = take_from_sandbox(others_changed);
        bool stored = false;
        if (status.ok() && text && *text != before)
            status = store_calculated(*field, std::move(*text), stored);
        if (!status.ok())
            return status;
        if (stored || others_changed)
            order.changed(field);
        if (stored && changed && listed.insert(field).second)
            changed->push_back(field);
    }
    if (!order.at_rest())
        note_calculation("the calculations of the form go in a circle: they were stopped after " +
                         std::to_string(LIMIT_CALCULATION_ROUNDS) + " rounds");
    to_calculate = false;
    if (allowance.used_up())
        return too_much_to(CALCULATING);
    return memory.failed() ? no_memory_to(CALCULATING) : CPDFStatus();
}

CPDFStatus CPDFDocument::calculate(std::vector<CPDFField*>* changed)
{
    return within_memory(CALCULATING, [&] { return m_state->calculate(changed); });
}

std::optional<std::string> CPDFDocument::shown_text(const CPDFField& field)
{
    CPDFFormCompute* const runner = m_state->compute();
    return runner ? formatted_text(field, m_state->shown_options, *runner) : std::nullopt;
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
