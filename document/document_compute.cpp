#include <algorithm>
#include <utility>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
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

// Each field once, where it comes first.
void keep_first(std::vector<CPDFField*>& fields)
{
    std::unordered_set<const CPDFField*> seen;
    std::erase_if(fields, [&seen](const CPDFField* field) { return !seen.insert(field).second; });
}

}  // namespace

CPDFFormCompute* CPDFDocument::State::compute()
{
    if (scripts == PDF_SCRIPTS::OFF)
        return nullptr;
    if (!computer) {
        computer.emplace([this](std::string_view name) { return names.find(loaded_form(), name); }, reader->budget());
        if (scripts == PDF_SCRIPTS::ALL)
            computer->use_sandbox(sandbox_document(), {script_seconds});
    }
    return &*computer;
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
    if (calculation_noted.insert(sentence).second)
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
    return stored ? carry_out(plan) : status;
}

// The budget is one for all rounds, so what is stored meanwhile takes its part of it.
CPDFStatus CPDFDocument::State::calculate(std::vector<CPDFField*>* changed)
{
    to_calculate = false;
    CPDFFormCompute* const runner = compute();
    if (!runner)
        return {};
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    bool again = false;
    if (CPDFStatus status = take_from_sandbox(again, changed); !status.ok())
        return status;
    again = !fields_to_calculate().empty();
    for (int round = 0; again && round < LIMIT_CALCULATION_ROUNDS; ++round) {
        again = false;
        for (CPDFField* each : *calculation_order) {
            if (allowance.used_up())
                return too_much_to(CALCULATING);
            CPDFField& field = value_field(*each);
            const std::string before = script_value_of(field);
            std::optional<std::string> text = runner->calculate(field, before);
            if (CPDFStatus status = take_from_sandbox(again, changed); !status.ok())
                return status;
            if (!text || *text == before)
                continue;
            bool stored = false;
            if (CPDFStatus status = store_calculated(field, std::move(*text), stored); !status.ok())
                return status;
            again = again || stored;
            if (stored && changed)
                changed->push_back(&field);
        }
    }
    if (changed)
        keep_first(*changed);
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
