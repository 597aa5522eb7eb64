#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/fill/reset.h"
#include "document/lookup/field_text.h"
#include "document/lookup/xml_fit.h"
#include "file/file_reader.h"
#include "forms/field.h"

namespace {

constexpr const char* FILLING = "fill the form";
constexpr const char* RESETTING = "reset the form";

// Which of `fields` the signatures lock.
CPDFStatus check_locks(const CPDFSignatureGuard& signatures, const std::vector<CPDFField*>& fields)
{
    CPDFStatus first;
    size_t locked = 0;
    for (const CPDFField* field : fields) {
        CPDFStatus status = signatures.check_fill(*field);
        if (!status.ok() && locked++ == 0)
            first = std::move(status);
    }
    if (locked > 1)
        first.text += ", and so are " + std::to_string(locked - 1) + " more";
    return first;
}

}  // namespace

CPDFStatus CPDFDocument::State::check_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill,
                                            PDF_FILL_PLAN& plan, PDF_WORDS words)
{
    const bool button = field.m_type == FIELD_BUTTON;
    const CPDFReadAllowance allowance(reader->budget());
    CPDFStatus status = plan_fill(field, value, fill, words, button ? bound_widgets() : widgets, plan);
    if (!status.ok() || plan.action == PDF_FILL_PLAN::KEEP)
        return status;
    if (fill != PDF_FILL::FORCE)
        status = check_permission(reader->permits_filling());
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = signatures().check_fill(field);
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = check_listing(field);
    if (status.ok())
        status = commit(plan, fill);
    return status.ok() || plan_keep(field, value, plan) ? CPDFStatus() : status;
}

CPDFStatus CPDFDocument::State::apply(const PDF_FILL_PLAN& plan)
{
    const CPDFReadAllowance allowance(reader->budget());
    return carry_out(plan);
}

CPDFStatus CPDFDocument::State::carry_out(const PDF_FILL_PLAN& plan)
{
    const bool button = plan.action == PDF_FILL_PLAN::SET_BUTTON;
    const size_t before = filled.size();
    to_calculate = true;
    CPDFStatus status = button ? draw_states(*plan.field) : CPDFStatus();
    if (status.ok())
        status = apply_fill(*xref, plan, button ? bound_widgets() : widgets, filled);
    CPDFStatus shown = show(std::span(filled).subspan(before));
    return status.ok() ? shown : status;
}

CPDFStatus CPDFDocument::check_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill, PDF_FILL_PLAN& plan,
                                     PDF_WORDS words)
{
    return within_memory(FILLING, [&] { return m_state->check_value(field, value, fill, plan, words); });
}

CPDFStatus CPDFDocument::apply(const PDF_FILL_PLAN& plan)
{
    return within_memory(FILLING, [&] { return m_state->apply(plan); });
}

CPDFStatus CPDFDocument::set_value(CPDFField& field, const CPDFValue& value, PDF_FILL fill)
{
    return within_memory(FILLING, [&] {
        PDF_FILL_PLAN plan;
        CPDFStatus status = m_state->check_value(field, value, fill, plan, PDF_WORDS::STATES_FIRST);
        if (status.ok())
            status = m_state->apply(plan);
        return status.ok() ? m_state->calculate(nullptr) : status;
    });
}

CPDFStatus CPDFDocument::set_text(CPDFField& field, std::string_view value, PDF_FILL fill)
{
    return within_memory(FILLING, [&] {
        if (field.m_type != FIELD_TEXT)
            return CPDFStatus::failed(PDF_CODE::WRONG_KIND,
                                      "field " + in_quotes(full_name(field)) + " is no text field");
        return set_value(field, std::string(value), fill);
    });
}

CPDFStatus CPDFDocument::reset(PDF_FILL fill)
{
    return within_memory(RESETTING, [&] { return m_state->reset(nullptr, fill); });
}

CPDFStatus CPDFDocument::reset(const std::vector<CPDFField*>& fields, PDF_FILL fill)
{
    return within_memory(RESETTING, [&] { return m_state->reset(&fields, fill); });
}

CPDFStatus CPDFDocument::State::reset(const std::vector<CPDFField*>* fields, PDF_FILL fill)
{
    CPDFStatus status = load_whole_form();
    if (!status.ok())
        return status;
    const CPDFWidgetBinder& bound = bound_widgets();
    PDF_RESET_PLAN plan;
    status = plan_reset(form, fields, bound, plan);
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = check_permission(reader->permits_filling());
    if (status.ok() && fill != PDF_FILL::FORCE)
        status = check_locks(signatures(), plan.fields);
    for (size_t i = 0; status.ok() && fill != PDF_FILL::FORCE && i < plan.fields.size(); ++i)
        status = check_listing(*plan.fields[i]);
    if (!status.ok())
        return status;
    const VXFailureCheck memory;
    const CPDFReadAllowance allowance(reader->budget());
    const size_t before = filled.size();
    status = apply_reset(*xref, plan, bound, filled);
    CPDFStatus shown = show(std::span(filled).subspan(before));
    if (memory.failed())
        return no_memory_to(RESETTING);
    if (allowance.used_up())
        return CPDFStatus::failed(PDF_CODE::LIMIT, "the form takes more work to reset than its size justifies");
    if (status.ok())
        status = std::move(shown);
    return status.ok() ? calculate(nullptr) : status;
}
