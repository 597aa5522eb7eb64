#include "document/xfa/xfa_form.h"

#include <algorithm>
#include <map>
#include <unordered_set>
#include <utility>

#include "core/xml_token.h"
#include "document/lookup/field_text.h"
#include "document/xfa/xfa_value.h"

namespace {

// Appends "`begin` "a", "b" and 3 more" unless there are none.
void note_fields(std::vector<std::string>& notes, const char* begin, const std::vector<const CPDFField*>& fields)
{
    constexpr size_t MOST = 10;
    if (fields.empty())
        return;
    std::string note = begin;
    for (size_t i = 0; i < std::min(fields.size(), MOST); ++i)
        note += (i ? ", " : " ") + in_quotes(full_name(*fields[i]));
    if (fields.size() > MOST)
        note += " and " + std::to_string(fields.size() - MOST) + " more";
    notes.push_back(std::move(note));
}

bool fits_into_xml(const std::vector<std::string>& texts)
{
    return std::all_of(texts.begin(), texts.end(),
                       [](const std::string& text) { return find_xml_forbidden(text) == std::string::npos; });
}

// What becomes of one value of the data.
struct DECISION {
    int rank = 0;
    const CPDFField* field = nullptr;  // borrowed from the form
    CPDFXfaValues::RESULT result = CPDFXfaValues::KEEP;
    std::vector<std::string> texts;
};

using DECISIONS = std::map<int32_t, DECISION>;  // by the node of the data

// Of fields that share a value a changed one counts, then one that agrees with the data. Notes in `lost` the fields whose place
// takes no value.
DECISIONS decide(const std::vector<XFA_BINDING>& bound, const std::vector<CPDFField*>& changed, const CPDFXfaData& data,
                 CPDFXfaValues& values, std::vector<const CPDFField*>& lost)
{
    const std::unordered_set<const CPDFField*> is_changed(changed.begin(), changed.end());
    DECISIONS decisions;
    for (const XFA_BINDING& at : bound) {
        if (!data.takes_value(at.node)) {
            lost.push_back(at.field);
            continue;
        }
        DECISION now = {0, at.field, {}, {}};
        now.result = values.value_of(at, data, now.texts);
        now.rank = is_changed.count(at.field) ? 3 : now.result == CPDFXfaValues::KEEP ? 2 : 1;
        if (DECISION& best = decisions[at.node]; best.rank < now.rank)
            best = std::move(now);
    }
    return decisions;
}

CPDFStatus carry_out(int32_t node, const DECISION& decision, CPDFXfaData& data, std::vector<const CPDFField*>& unread)
{
    if (decision.result == CPDFXfaValues::NO_FORMAT)
        unread.push_back(decision.field);
    if (decision.result == CPDFXfaValues::NO_FORMAT || decision.result == CPDFXfaValues::KEEP)
        return {};
    if (!fits_into_xml(decision.texts))
        return CPDFStatus::failed(PDF_CODE::BAD_DATA, "field " + in_quotes(full_name(*decision.field)) +
                                                          " does not fit into the XFA data: XML can't hold its value");
    if (decision.result == CPDFXfaValues::SET_LIST)
        data.set_list(node, decision.texts);
    else
        data.set_value(node, decision.texts[0]);
    return {};
}

}  // namespace

CPDFStatus CPDFXfaForm::open(CPDFXRefTable& xref, const CPDFObj* form)
{
    CPDFStatus status = read_xfa_packets(xref, form, m_packets);
    return status.ok() ? m_data.open(std::move(m_packets.data)) : status;
}

// Null where there is no template that can be read; its element is handed out in `top`.
const CPDFXmlTree* CPDFXfaForm::template_tree(int32_t& top, std::vector<std::string>& notes)
{
    top = m_packets.is_single ? m_data.tree().child(0, "template") : 0;
    if (m_packets.is_single)
        return top < 0 ? nullptr : &m_data.tree();
    if (m_packets.form_template.empty())
        return nullptr;
    if (m_own_template.parse(std::move(m_packets.form_template)).ok())
        return &m_own_template;
    notes.push_back("the XFA template can't be read, so the names of the fields say where their values belong");
    return nullptr;
}

CPDFStatus CPDFXfaForm::take_values(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFWidgetBinder& widgets,
                                    const std::vector<CPDFField*>& changed, std::vector<std::string>& notes)
{
    int32_t top = 0;
    const CPDFXmlTree* const tree = template_tree(top, notes);
    std::vector<XFA_BINDING> bound;
    std::vector<const CPDFField*> lost;
    if (CPDFStatus status = bind_xfa(form, m_data, tree, top, bound, lost); !status.ok())
        return status;
    CPDFXfaValues values(xref, widgets, tree);
    const DECISIONS decisions = decide(bound, changed, m_data, values, lost);
    if (values.over_limit())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the values of the form are larger than what is supported");
    std::vector<const CPDFField*> unread;
    for (const auto& [node, decision] : decisions) {
        if (CPDFStatus status = carry_out(node, decision, m_data, unread); !status.ok())
            return status;
    }
    note_fields(
        notes,
        "where in the XFA data the values of these fields belong is not known, so they are not written there:", lost);
    note_fields(
        notes,
        "these dates are in no form that the XFA template tells, so they are not written to the XFA data:", unread);
    return {};
}

CPDFStatus CPDFXfaForm::store(CPDFXRefTable& xref) const
{
    return m_data.is_changed() ? store_xfa_stream(xref, m_packets.data_ref, m_data.text()) : CPDFStatus();
}
