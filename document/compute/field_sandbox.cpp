#include "document/compute/field_sandbox.h"

#include <iterator>

#include "document/lookup/field_text.h"
#include "document/lookup/value_text.h"
#include "forms/field.h"

namespace {

constexpr const char* EVENT_NAMES[EVENT_COUNT] = {"Keystroke", "Format", "Validate", "Calculate"};

template <typename Item>
void move_to_end(std::vector<Item>& from, std::vector<Item>& to)
{
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

}  // namespace

bool CPDFFieldSandbox::run(const CPDFField& field, PDF_SCRIPT_EVENT event, const std::string& text, FIELD_EVENT& at)
{
    if (m_sandbox.needs_document()) {
        m_sandbox.load(m_snapshot());
        m_changed.clear();
    }
    SCRIPT_RUN run;
    for (const CPDFField* each : std::exchange(m_changed, {}))
        run.changes.push_back({full_name(*each), script_values_of(*each)});
    run.event_type = "Field";
    run.event_name = EVENT_NAMES[event];
    run.event = at;
    run.text = text;
    SCRIPT_ANSWER answer = m_sandbox.run(run);
    move_to_end(answer.console, m_console);
    if (!answer.fault.empty()) {
        m_faults.push_back("the " + std::string(name_of_event(event)) + " script of field " +
                           in_quotes(full_name(field)) + " was not run: " + answer.fault);
        return false;
    }
    move_to_end(answer.changes, m_changes);
    at = std::move(answer.event);
    return true;
}

void CPDFFieldSandbox::renew()
{
    m_sandbox.renew();
    m_changed.clear();
    m_changes.clear();
    m_faults.clear();
    m_console.clear();
}

std::vector<std::string> script_values_of(const CPDFField& field)
{
    if (field.m_value.type == PDF_OBJ_STREAM)
        return {stream_text(*field.m_xref, *field.m_value.stream)};
    PDF_VALUE_TEXT value = value_text(*field.m_xref, field.m_value);
    if (value.is_list)
        return std::move(value.items);
    return {std::move(value.text)};
}
