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

// Each field once, where it comes first.
void keep_first(std::vector<CPDFField*>& fields)
{
    std::unordered_set<const CPDFField*> seen;
    std::erase_if(fields, [&seen](const CPDFField* field) { return !seen.insert(field).second; });
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
        computer.emplace(script_fields(), reader->budget());
        if (scripts == PDF_SCRIPTS::ALL)
            computer->use_sandbox(sandbox_document(), {script_seconds});
    }
    return &*computer;
}

PDF_SCRIPT_FIELDS CPDFDocument::State::script_fields()
{
    PDF_SCRIPT_FIELDS fields;
    fields.find = [this](std::string_view name) { return names.find(loaded_form(), name); };
    fields.export_value = [this](const CPDFField& field) {
        for (const PDF_BUTTON_CHOICE& choice : button_choices(field, bound_widgets()))
            if (field.m_value.is_name(choice.state.c_str()))
                return choice.export_value;
        return std::string(field.m_value.name_text());
    };
    return fields;
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
        keep_first(order);
    }
    return calculation_order.emplace(std::move(order));
}

void CPDFDocument::State::note_calculation(std::string sentence)
{
    if (calculation_noted.insert(sentence).second)
        calculation_notes.push_back(std::move(sentence));
}

CPDFStatus CPDFDocument::State::store_calculated(CPDFField& field, CPDFValue value, bool& stored)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status;
    if (auto* text = std::get_if<std::string>(&value))
        status = about_field(field, compute()->validate(field, *text));
    if (status.ok())
        status = plan_fill(field, value, PDF_FILL::FORCE, PDF_WORDS::EXPORT_FIRST,
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

// Calculates one field, and stores what its script made of others. Tells in `stored` whether any value changed.
CPDFStatus CPDFDocument::State::calculate_field(CPDFField& field, bool& stored, std::vector<CPDFField*>* changed)
{
    const std::string before = compute()->value_of(field);
    std::optional<std::string> text = compute()->calculate(field, before);
    CPDFStatus status = take_from_sandbox(stored, changed);
    bool own_stored = false;
    if (status.ok() && text && *text != before)
        status = store_calculated(field, std::move(*text), own_stored);
    if (own_stored && changed)
        changed->push_back(&field);
    stored = stored || own_stored;
    return status;
}

CPDFStatus CPDFDocument::State::calculate_in_order(const CPDFReadAllowance& allowance, std::vector<CPDFField*>* changed)
{
    bool prepared = false;
    CPDFStatus status = take_from_sandbox(prepared, changed);
    CalculationOrder order(fields_to_calculate());
    while (status.ok() && !allowance.used_up()) {
        CPDFField* const field = order.next();
        if (!field)
            break;
        bool stored = false;
        status = calculate_field(*field, stored, changed);
        if (stored)
            order.changed(field);
    }
    if (status.ok() && !allowance.used_up() && !order.at_rest())
        note_calculation("the calculations of the form go in a circle: they were stopped after " +
                         std::to_string(LIMIT_CALCULATION_ROUNDS) + " rounds");
    return status;
}

// The budget is one for all rounds, so what is stored meanwhile takes its part of it; what can't be read without one looks
// as if it were missing.
CPDFStatus CPDFDocument::State::calculate(std::vector<CPDFField*>* changed)
{
    to_calculate = false;
    if (!compute())
        return {};
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    CPDFStatus status = calculate_in_order(allowance, changed);
    to_calculate = false;
    if (changed)
        keep_first(*changed);
    if (allowance.used_up())
        return too_much_to(CALCULATING);
    return memory.failed() ? no_memory_to(CALCULATING) : status;
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

std::string CPDFDocument::format_words(const CPDFField& field)
{
    CPDFFormCompute* const runner = m_state->compute();
    return runner ? runner->words_of_format(field) : std::string();
}

void CPDFDocument::set_scripts(PDF_SCRIPTS scripts, double seconds)
{
    m_state->note_scripts();
    m_state->scripts = scripts;
    m_state->script_seconds = seconds;
    m_state->computer.reset();
}

void CPDFDocument::State::calculate_later()
{
    to_calculate = true;
    values_changed = true;
}
