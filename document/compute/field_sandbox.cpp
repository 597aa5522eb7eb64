#include "document/compute/field_sandbox.h"

#include <algorithm>
#include <iterator>

#include "document/lookup/field_text.h"
#include "forms/field.h"

namespace {

constexpr const char* EVENT_NAMES[EVENT_COUNT] = {"Keystroke", "Format", "Validate", "Calculate"};

// Lines that are kept of what scripts print.
constexpr size_t LINES_MAX = 1000;

template <typename Item>
void move_to_end(std::vector<Item>& from, std::vector<Item>& to)
{
    to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
}

}  // namespace

void CPDFFieldSandbox::load()
{
    m_sandbox.load(m_document.snapshot());
    m_changed.clear();
    m_assumptions_told = 0;
    m_prepared = false;
}

// Values that the scripts of the document set count once: a process that takes another one's place is told what the fields
// have become since.
void CPDFFieldSandbox::take(SCRIPT_ANSWER& answer, CHANGES changes, const std::string& script)
{
    move_to_end(answer.console, m_console);
    m_console.resize(std::min(m_console.size(), LINES_MAX));
    if (!answer.fault.empty()) {
        m_faults.push_back("the " + script + " was not run: " + answer.fault);
        return;
    }
    if (changes != CHANGES::DROPPED)
        move_to_end(answer.traits, m_traits);
    if (changes == CHANGES::KEPT)
        return move_to_end(answer.changes, m_changes);
    for (SCRIPT_CHANGE& change : answer.changes) {
        const CPDFField* const field = m_document.fields.find(change.field);
        if (changes == CHANGES::OLDER && !m_newer.contains(field))
            m_changes.push_back(std::move(change));
        else if (field)
            m_changed.push_back(field);
    }
}

// Runs the scripts of the document. False when one of them ended the process.
bool CPDFFieldSandbox::open_document()
{
    const std::vector<PDF_DOCUMENT_SCRIPT>& scripts = m_document.scripts();
    for (size_t i = 0; i < scripts.size(); ++i) {
        if (m_deadly.contains(i))
            continue;
        SCRIPT_RUN run;
        run.event_type = "Doc";
        run.event_name = "Open";
        run.event.target = scripts[i].name;
        run.text = scripts[i].text;
        SCRIPT_ANSWER answer = m_sandbox.run(run);
        if (m_sandbox.was_killed())
            return false;
        take(answer, i < m_opened ? CHANGES::DROPPED : CHANGES::OLDER, "document script " + in_quotes(scripts[i].name));
        m_opened = std::max(m_opened, i + 1);
        if (m_sandbox.needs_document()) {
            m_deadly.insert(i);
            return false;
        }
    }
    return true;
}

void CPDFFieldSandbox::prepare()
{
    if (m_sandbox.needs_document())
        load();
    while (!m_prepared) {
        m_prepared = open_document();
        if (!m_prepared)
            load();
    }
}

SCRIPT_ANSWER CPDFFieldSandbox::attempt(SCRIPT_RUN& run)
{
    prepare();
    run.changes.clear();
    for (const CPDFField* each : std::exchange(m_changed, {}))
        run.changes.push_back({full_name(*each), script_values_of(*each, m_document.fields)});
    for (; m_assumptions_told < m_assumptions.size(); ++m_assumptions_told)
        run.changes.push_back(m_assumptions[m_assumptions_told].change);
    return m_sandbox.run(run);
}

bool CPDFFieldSandbox::run(const CPDFField& field, PDF_SCRIPT_EVENT event, const std::string& text, FIELD_EVENT& at)
{
    SCRIPT_RUN run;
    run.event_type = "Field";
    run.event_name = EVENT_NAMES[event];
    run.event = at;
    run.text = text;
    SCRIPT_ANSWER answer = attempt(run);
    if (m_sandbox.was_killed())
        answer = attempt(run);
    take(answer, event == EVENT_FORMAT ? CHANGES::DROPPED : CHANGES::KEPT,
         std::string(name_of_event(event)) + " script of field " + in_quotes(full_name(field)));
    if (!answer.fault.empty())
        return false;
    at = std::move(answer.event);
    return true;
}

void CPDFFieldSandbox::value_changed(const CPDFField& field)
{
    m_changed.push_back(&field);
    if (!m_prepared)
        m_newer.insert(&field);
    if (!m_changes.empty())
        std::erase_if(m_changes, [name = full_name(field)](const SCRIPT_CHANGE& at) { return at.field == name; });
}

void CPDFFieldSandbox::assume(const CPDFField& field, std::vector<std::string> value)
{
    m_assumptions.push_back({&field, {full_name(field), std::move(value)}});
}

void CPDFFieldSandbox::drop_assumptions()
{
    m_assumptions.resize(m_assumptions_told);
    for (const ASSUMPTION& each : m_assumptions)
        m_changed.push_back(each.field);
    m_assumptions.clear();
    m_assumptions_told = 0;
}

void CPDFFieldSandbox::renew()
{
    m_sandbox.renew();
    m_prepared = false;
    m_opened = 0;
    m_deadly.clear();
    m_newer.clear();
    m_changed.clear();
    m_assumptions.clear();
    m_assumptions_told = 0;
    m_changes.clear();
    m_traits.clear();
    m_faults.clear();
    m_console.clear();
}
