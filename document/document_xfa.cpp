// The front class, continued: XFA data.
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/lookup/export_value.h"
#include "document/lookup/field_text.h"
#include "document/xfa/xfa_form.h"
#include "forms/field_walk.h"

namespace {

constexpr const char* READING = "read the XFA data";
constexpr const char* WRITING = "write the XFA data";

}  // namespace

CPDFStatus CPDFDocument::State::open_xfa(CPDFXfaForm& xfa)
{
    const CPDFReadAllowance allowance(reader->budget());
    return xfa.open(*xref, form_entry());
}

CPDFStatus CPDFDocument::State::take_xfa_values(CPDFXfaForm& xfa, std::vector<std::string>* notes)
{
    CPDFStatus status = load_whole_form();
    if (status.ok())
        status = open_xfa(xfa);
    if (!status.ok())
        return status;
    const CPDFWidgetBinder& bound = bound_widgets();
    const CPDFReadAllowance allowance(reader->budget());
    std::vector<std::string> found;
    status = xfa.take_values(*xref, form, bound, filled, found);
    if (notes)
        notes->insert(notes->end(), found.begin(), found.end());
    return status;
}

bool CPDFDocument::State::has_only_xfa()
{
    if (!has_xfa())
        return false;
    bool has_value = false;
    for_each_field(loaded_form(), [&](const CPDFField& field) { has_value |= CPDFExportValues::is_exported(field); });
    return !has_value;
}

CPDFStatus CPDFDocument::write_xfa(std::vector<std::string>* notes)
{
    return within_memory(WRITING, [&] {
        if (!m_state->has_xfa())
            return CPDFStatus();
        const VXFailureCheck memory;
        CPDFXfaForm xfa;
        CPDFStatus status = m_state->take_xfa_values(xfa, notes);
        need_memory(memory);  // what could not be read is no value to store
        return status.ok() ? xfa.store(*m_state->xref) : status;
    });
}

CPDFStatus CPDFDocument::read_xfa(std::string& out, std::vector<std::string>* notes)
{
    return within_memory(READING, [&] {
        CPDFXfaForm xfa;
        CPDFStatus status = m_state->take_xfa_values(xfa, notes);
        if (status.ok())
            out = xfa.data().data_set_text();
        return status;
    });
}

bool CPDFDocument::has_only_xfa()
{
    const VXFailureCheck memory;
    const bool only = m_state->has_only_xfa();
    need_memory(memory);
    return only;
}

CPDFStatus CPDFDocument::xfa_values(std::vector<PDF_XFA_VALUE>& out)
{
    return within_memory(READING, [&] {
        out.clear();
        CPDFXfaForm xfa;
        CPDFStatus status = m_state->open_xfa(xfa);
        return status.ok() ? xfa.data().list(out) : status;
    });
}

CPDFStatus CPDFDocument::State::set_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill,
                                               CPDFXfaForm& xfa, std::vector<CPDFStatus>& each)
{
    CPDFStatus status;
    if (fill != PDF_FILL::FORCE)
        status = check_permission(reader->permits_filling());
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = signatures().check_data();
    if (status.ok())
        status = open_xfa(xfa);
    each.clear();
    for (size_t i = 0; status.ok() && i < values.size(); ++i)
        each.push_back(xfa.data().set(values[i]));
    return status;
}

CPDFStatus CPDFDocument::check_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill,
                                          std::vector<CPDFStatus>& each)
{
    return within_memory(READING, [&] {
        CPDFXfaForm xfa;
        return m_state->set_xfa_values(values, fill, xfa, each);
    });
}

CPDFStatus CPDFDocument::set_xfa_values(const std::vector<PDF_XFA_VALUE>& values, PDF_FILL fill)
{
    return within_memory(WRITING, [&] {
        const VXFailureCheck memory;
        CPDFXfaForm xfa;
        std::vector<CPDFStatus> each;
        CPDFStatus status = m_state->set_xfa_values(values, fill, xfa, each);
        for (size_t i = 0; status.ok() && i < each.size(); ++i)
            status = each[i];
        need_memory(memory);
        return status.ok() ? xfa.store(*m_state->xref) : status;
    });
}
