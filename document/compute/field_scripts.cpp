#include "document/compute/field_scripts.h"

#include <memory>

#include "core/dictionary.h"
#include "core/key_set.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "engine/action.h"
#include "forms/field.h"
#include "forms/field_inherit.h"

namespace {

size_t footprint(const SCRIPT_LIST& list)
{
    size_t bytes = list.size() * sizeof(SCRIPT_VALUE);
    for (const SCRIPT_VALUE& value : list)
        bytes += value.list() ? footprint(*value.list()) : 0;
    return bytes;
}

}  // namespace

const char* name_of_event(PDF_SCRIPT_EVENT event)
{
    constexpr const char* NAMES[EVENT_COUNT] = {"keystroke", "format", "validate", "calculate"};
    return NAMES[event];
}

const PDF_FIELD_SCRIPTS* CPDFFieldScripts::of(const CPDFField& field)
{
    const CPDFField* const holder = nearest_field(field, [](const CPDFField& at) { return at.m_has_actions; });
    if (!holder)
        return nullptr;
    auto known = m_read.find(holder->m_ref.num);
    if (known == m_read.end()) {
        if (m_held > LIMIT_SCRIPTS_HELD) {
            m_read.clear();
            m_scripts.clear();
            m_held = 0;
        }
        PDF_FIELD_SCRIPTS scripts = read(*holder);
        if (m_budget.exhausted())
            return nullptr;
        known = m_read.emplace(holder->m_ref.num, std::move(scripts)).first;
    }
    return &known->second;
}

PDF_FIELD_SCRIPTS CPDFFieldScripts::read(const CPDFField& field)
{
    constexpr CPDFKeySet KEYS{"AA"};
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &KEYS);
    const CPDFEntryView actions(field.m_xref, own.dictionary() ? own.dict->get_item("AA") : nullptr);
    PDF_FIELD_SCRIPTS scripts;
    for (int event = 0; actions->dictionary() && event < EVENT_COUNT; ++event) {
        const std::unique_ptr<CPDFAction> action(
            CPDFAction::parser_act(field.m_xref, actions->dict->get_item(CPDFField::ms_actions[event])));
        if (action)
            add_scripts(*action, scripts.on[event]);
    }
    return scripts;
}

void CPDFFieldScripts::add_scripts(const CPDFAction& action, std::vector<const PDF_FIELD_SCRIPT*>& out)
{
    if (action.m_type == ACTION_JAVASCRIPT && action.m_script.len > 0 && m_budget.may_parse())
        out.push_back(&kept(utf8_of(action.m_script)));
    for (const CPDFAction* next : action.m_next)
        add_scripts(*next, out);
}

const PDF_FIELD_SCRIPT& CPDFFieldScripts::kept(std::string text)
{
    PDF_FIELD_SCRIPT script{std::move(text), {}};
    if (const auto known = m_scripts.find(script); known != m_scripts.end())
        return *known;
    script.call = read_known_call(script.text);
    const size_t bytes = 2 * script.text.size() + (script.call ? footprint(script.call->arguments) : 0);
    m_held += bytes;
    m_budget.spend(bytes);
    return *m_scripts.insert(std::move(script)).first;
}
