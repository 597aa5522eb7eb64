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
    m_loaded_with = m_altered;
    m_loaded_with_traits = m_traits_stored;
    m_changed.clear();
    m_assumptions_told = 0;
    m_prepared = false;
}

void CPDFFieldSandbox::tell_changes(SCRIPT_RUN& run)
{
    run.changes.clear();
    for (const CPDFField* each : std::exchange(m_changed, {}))
        run.changes.push_back({full_name(*each), script_values_of(*each, m_document.fields)});
}

// Values that the scripts of the document set count once: a process that takes another one's place is told what the fields
// have become since.
void CPDFFieldSandbox::take(SCRIPT_ANSWER& answer, CHANGES changes, const std::string& script)
{
    move_to_end(answer.console, m_console);
    m_console.resize(std::min(m_console.size(), LINES_MAX));
    if (!answer.fault.empty()) {
        m_faults.push_back("the " + script + " was not run: " + answer.fault);
        // What it set before it failed does not count.
        for (const SCRIPT_CHANGE& change : answer.changes)
            if (const CPDFField* const field = m_document.fields.find(change.field))
                m_changed.push_back(field);
    }
    const bool counts = answer.fault.empty() && changes != CHANGES::DROPPED;
    if (counts && changes != CHANGES::REPEATED)
        move_to_end(answer.traits, m_traits);
    else if (!counts && !answer.traits.empty())
        m_sandbox.forget_document();
    if (!answer.fault.empty())
        return;
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
        tell_changes(run);
        SCRIPT_ANSWER answer = m_sandbox.run(run);
        if (m_sandbox.was_killed())
            return false;
        take(answer, i < m_opened ? CHANGES::REPEATED : CHANGES::OLDER,
             "document script " + in_quotes(scripts[i].name));
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
    tell_changes(run);
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
    m_altered.insert(&field);
    if (!m_prepared)
        m_newer.insert(&field);
    if (!m_assumed.contains(&field))
        drop_changes(field);
}

void CPDFFieldSandbox::drop_changes(const CPDFField& field)
{
    if (!m_changes.empty())
        std::erase_if(m_changes, [name = full_name(field)](const SCRIPT_CHANGE& at) { return at.field == name; });
}

void CPDFFieldSandbox::assume(const CPDFField& field, std::vector<std::string> value)
{
    drop_changes(field);
    m_assumed.insert(&field);
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

std::vector<SCRIPT_CHANGE> CPDFFieldSandbox::take_changes()
{
    m_assumed.clear();
    return std::exchange(m_changes, {});
}

void CPDFFieldSandbox::renew()
{
    m_sandbox.renew();
    if (m_loaded_with_traits)
        m_sandbox.forget_document();
    m_traits_stored = false;
    m_assumed.clear();
    m_prepared = false;
    m_opened = 0;
    m_deadly.clear();
    m_newer.clear();
    m_altered.clear();
    // The process goes back to what it was loaded with, which may have been the values of a row.
    m_changed.assign(m_loaded_with.begin(), m_loaded_with.end());
    m_assumptions.clear();
    m_assumptions_told = 0;
    m_changes.clear();
    m_traits.clear();
    m_faults.clear();
    m_console.clear();
}
