#include "document/xfa/xfa_form.h"

#include <algorithm>
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

}  // namespace

CPDFStatus CPDFXfaForm::open(CPDFXRefTable& xref, const CPDFObj* form)
{
    CPDFStatus status = read_xfa_packets(xref, form, m_packets);
    return status.ok() ? m_data.open(std::move(m_packets.data)) : status;
}

CPDFStatus CPDFXfaForm::take_values(CPDFXRefTable& xref, CPDFAcroForm& form, const CPDFWidgetBinder& widgets,
                                    std::vector<std::string>& notes)
{
    const CPDFXmlTree* tree = nullptr;
    int32_t top = 0;
    if (m_packets.is_single) {
        top = m_data.tree().child(0, "template");
        tree = top < 0 ? nullptr : &m_data.tree();
    } else if (!m_packets.form_template.empty()) {
        if (m_own_template.parse(std::move(m_packets.form_template)).ok())
            tree = &m_own_template;
        else
            notes.push_back("the XFA template can't be read, so the names of the fields say where their values belong");
    }
    std::vector<XFA_BINDING> bound;
    std::vector<const CPDFField*> lost;
    if (CPDFStatus status = bind_xfa(form, m_data, tree, top, bound, lost); !status.ok())
        return status;
    CPDFXfaValues values(xref, widgets, tree);
    std::vector<const CPDFField*> unread;
    for (const XFA_BINDING& at : bound) {
        std::vector<std::string> texts;
        const CPDFXfaValues::RESULT result = values.value_of(at, m_data, texts);
        if (result == CPDFXfaValues::NO_FORMAT)
            unread.push_back(at.field);
        if (result != CPDFXfaValues::SET_TEXT && result != CPDFXfaValues::SET_LIST)
            continue;
        if (!fits_into_xml(texts))
            return CPDFStatus::failed(PDF_CODE::BAD_DATA,
                                      "field " + in_quotes(full_name(*at.field)) +
                                          " does not fit into the XFA data: XML can't hold its value");
        if (result == CPDFXfaValues::SET_LIST)
            m_data.set_list(at.node, texts);
        else
            m_data.set_value(at.node, texts[0]);
    }
    if (values.over_limit())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the values of the form are larger than what is supported");
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
