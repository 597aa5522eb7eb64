#include "document/compute/form_compute.h"

#include <algorithm>
#include <cstdint>

#include "core/limits.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_walk.h"
#include "script/format_words.h"

namespace {

// What a script that runs and a value that one gets take beside their bytes, in bytes that could be parsed meanwhile.
constexpr size_t RUN_WORK = 256;
constexpr size_t VALUE_WORK = 48;

FIELD_EVENT event_for(const CPDFField& field, const std::string& text)
{
    FIELD_EVENT event;
    event.target = full_name(field);
    event.value = text;
    return event;
}

}  // namespace

const std::vector<const PDF_FIELD_SCRIPT*>& CPDFFormCompute::scripts(const CPDFField& field, PDF_SCRIPT_EVENT event)
{
    static const std::vector<const PDF_FIELD_SCRIPT*> NONE;
    const PDF_FIELD_SCRIPTS* all = m_scripts.of(field);
    return all ? all->on[event] : NONE;
}

// Runs the scripts of an event, up to one that refuses. False when none ran.
bool CPDFFormCompute::run(const CPDFField& field, PDF_SCRIPT_EVENT event, FIELD_EVENT& at)
{
    bool ran = false;
    for (const PDF_FIELD_SCRIPT* script : scripts(field, event)) {
        if (!m_budget.spend(RUN_WORK + script->text.size() + at.value.size()))
            break;
        if (script->call)
            run_known_call(*script->call, at, *this);
        else if (!m_sandbox || !m_sandbox->run(field, event, script->text, at)) {
            if (!m_sandbox)
                m_skipped.emplace(field.m_ref.num, event);
            continue;
        }
        ran = true;
        if (!at.rc)
            break;
    }
    return ran;
}

CPDFStatus CPDFFormCompute::check(const CPDFField& field, PDF_SCRIPT_EVENT event, std::string& text)
{
    if (text.empty() || (scripts(field, event).empty() && !m_budget.exhausted()))
        return {};
    FIELD_EVENT at = event_for(field, text);
    run(field, event, at);
    if (m_budget.exhausted())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "takes more work to check than the file's size justifies");
    if (!at.rc) {
        const std::string why = at.message.empty() ? std::string("its script refuses it") : at.message;
        return CPDFStatus::failed(PDF_CODE::WRONG_KIND, "does not take " + in_quotes(text) + ": " + why);
    }
    text = std::move(at.value);
    return {};
}

CPDFStatus CPDFFormCompute::commit(const CPDFField& field, std::string& text)
{
    CPDFStatus status = check(field, EVENT_KEYSTROKE, text);
    return status.ok() ? validate(field, text) : status;
}

CPDFStatus CPDFFormCompute::validate(const CPDFField& field, std::string& text)
{
    return check(field, EVENT_VALIDATE, text);
}

std::optional<std::string> CPDFFormCompute::calculate(const CPDFField& field, const std::string& text)
{
    if (!m_budget.spend(VALUE_WORK + text.size()) || scripts(field, EVENT_CALCULATE).empty())
        return {};
    FIELD_EVENT at = event_for(field, text);
    if (!run(field, EVENT_CALCULATE, at) || !at.rc)
        return {};
    return std::move(at.value);
}

std::string CPDFFormCompute::words_of_format(const CPDFField& field)
{
    for (const PDF_SCRIPT_EVENT event : {EVENT_FORMAT, EVENT_KEYSTROKE}) {
        for (const PDF_FIELD_SCRIPT* script : scripts(field, event)) {
            std::string words = script->call ? format_words(*script->call) : std::string();
            if (!words.empty())
                return words;
        }
    }
    return {};
}

std::optional<PDF_SHOWN_TEXT> CPDFFormCompute::format(const CPDFField& field, const std::string& text)
{
    if (text.empty() || scripts(field, EVENT_FORMAT).empty())
        return {};
    FIELD_EVENT at = event_for(field, text);
    if (!run(field, EVENT_FORMAT, at) || !at.rc)
        return {};
    const bool red = at.color == EVENT_COLOR::RED;
    if (at.value == text && !red)
        return {};
    return PDF_SHOWN_TEXT{std::move(at.value), red};
}

void CPDFFormCompute::append_values(const std::string& name, std::vector<std::string>& out) const
{
    CPDFField* const found = m_budget.spend(VALUE_WORK + name.size()) ? m_fields.find(name) : nullptr;
    if (!found)
        return;
    size_t left = LIMIT_GROUP_VALUES;
    for_each_field(value_field(*found), [&](const CPDFField& field) {
        const bool holds_value = field.m_kid_cnt == 0 || (field.m_kids[0] && field.m_kids[0]->m_name.len == 0);
        if (!m_budget.spend(VALUE_WORK) || field.m_name.len <= 0 || !holds_value)
            return;
        std::string value = value_of(field);
        const size_t size = VALUE_WORK + value.size();
        if (m_budget.spend(size <= left ? size : SIZE_MAX))
            out.push_back(std::move(value));
        left -= std::min(left, size);
    });
}
