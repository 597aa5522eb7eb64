#include "document/compute/field_scripts.h"

#include <memory>

#include "core/dictionary.h"
#include "core/key_set.h"
#include "core/xref_table.h"
#include "document/lookup/field_text.h"
#include "engine/action.h"
#include "forms/field.h"

namespace {

void add_scripts(const CPDFAction& action, std::vector<PDF_FIELD_SCRIPT>& out)
{
    if (action.m_type == ACTION_JAVASCRIPT && action.m_script.len > 0) {
        std::string text = utf8_of(action.m_script);
        std::optional<KNOWN_CALL> call = read_known_call(text);
        out.push_back({std::move(text), std::move(call)});
    }
    for (const CPDFAction* next : action.m_next)
        add_scripts(*next, out);
}

}  // namespace

const char* name_of_event(PDF_SCRIPT_EVENT event)
{
    constexpr const char* NAMES[EVENT_COUNT] = {"keystroke", "format", "validate", "calculate"};
    return NAMES[event];
}

const PDF_FIELD_SCRIPTS* CPDFFieldScripts::of(const CPDFField& field)
{
    const auto known = m_read.find(field.m_ref.num);
    if (known != m_read.end())
        return known->second ? &*known->second : nullptr;
    return read(field);
}

const PDF_FIELD_SCRIPTS* CPDFFieldScripts::read(const CPDFField& field)
{
    constexpr CPDFKeySet KEYS{"AA"};
    CPDFObj own;
    field.m_xref->get_entity(own, field.m_ref, &KEYS);
    const CPDFObj* entry = own.dictionary() ? own.dict->get_item("AA") : nullptr;
    if (!entry)
        return field.m_parent ? of(*field.m_parent) : nullptr;
    const CPDFEntryView actions(field.m_xref, entry);
    PDF_FIELD_SCRIPTS scripts;
    for (int event = 0; actions->dictionary() && event < EVENT_COUNT; ++event) {
        const std::unique_ptr<CPDFAction> action(
            CPDFAction::parser_act(field.m_xref, actions->dict->get_item(CPDFField::ms_actions[event])));
        if (action)
            add_scripts(*action, scripts.on[event]);
    }
    return &*m_read.emplace(field.m_ref.num, std::move(scripts)).first->second;
}
