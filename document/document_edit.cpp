#include "document/document.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document_state.h"
#include "document/edit/remove_field.h"
#include "document/edit/rename_field.h"
#include "file/file_reader.h"
#include "forms/field.h"

// What every edit begins with: the whole form, the checks, and what would not survive the change.
CPDFStatus CPDFDocument::State::begin_edit(std::span<CPDFField* const> fields, PDF_EDIT edit)
{
    CPDFStatus status = load_whole_form();
    if (status.ok() && edit != PDF_EDIT::FORCE)
        status = check_permission(reader->permits_editing());
    if (status.ok())
        status = draw();
    if (!status.ok())
        return status;
    redraw.reset();  // the form's fonts may change
    to_draw.clear();
    filled.clear();
    edited = true;
    if (edit == PDF_EDIT::FORCE)
        return {};
    status = signatures().check_edit(nullptr);
    for (size_t i = 0; i < fields.size() && status.ok(); ++i)
        status = signatures().check_edit(fields[i]);
    return status;
}

// Carries out `operation(EDIT_TARGET&)` on `fields`.
template <typename Operation>
CPDFStatus CPDFDocument::State::edit(std::span<CPDFField* const> fields, PDF_EDIT edit, const Operation& operation)
{
    return within_memory("change the form", [&] {
        CPDFStatus status = begin_edit(fields, edit);
        if (!status.ok())
            return status;
        const CPDFReadAllowance allowance(reader->budget());
        EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
        return operation(target);
    });
}

CPDFStatus CPDFDocument::add_field(const PDF_NEW_FIELD& field, PDF_EDIT edit, CPDFField** out)
{
    return m_state->edit({}, edit, [&](EDIT_TARGET& target) {
        if (field.entries.default_value)
            m_state->bound_widgets();
        CPDFField* added = nullptr;
        CPDFStatus status = insert_field(target, field, added);
        if (!status.ok())
            return status;
        if (out)
            *out = added;
        return m_state->show_anew({&added, 1});
    });
}

CPDFStatus CPDFDocument::design_fields(std::span<CPDFField* const> fields, const PDF_FIELD_DESIGN& design,
                                       PDF_EDIT edit)
{
    return m_state->edit(fields, edit, [&](EDIT_TARGET& target) {
        CPDFRefusals refusals;
        check_design(target, fields, design, refusals);
        CPDFStatus status = refusals.status();
        m_state->bound_widgets();
        for (size_t i = 0; i < fields.size() && status.ok(); ++i)
            status = design_field(target, *fields[i], design);
        return status.ok() && design.style.sets_any() ? m_state->show_anew(fields) : status;
    });
}

CPDFStatus CPDFDocument::remove_field(CPDFField& field, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) {
        if (field.has_sign())
            m_state->guard.reset();
        m_state->bound_widgets();
        return erase_field(target, field);
    });
}

CPDFStatus CPDFDocument::rename_field(CPDFField& field, const std::string& name, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) { return set_field_name(target, field, name); });
}

CPDFStatus CPDFDocument::move_field(CPDFField& field, CPDFField* parent, PDF_EDIT edit, CPDFField** out)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET& target) {
        CPDFField* moved = nullptr;
        CPDFStatus status = set_field_parent(target, field, parent, moved);
        if (out)
            *out = moved;
        return status;
    });
}

CPDFStatus CPDFDocument::change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, PDF_EDIT edit)
{
    CPDFField* const at = &field;
    return m_state->edit({&at, 1}, edit, [&](EDIT_TARGET&) {
        CPDFStatus status = ::change_field(field, change, m_state->bound_widgets());
        constexpr uint32_t DRAWN = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_COMB;
        const bool drawn =
            change.options || change.max_length || ((change.set_flags | change.clear_flags) & DRAWN) != 0;
        return status.ok() && drawn ? m_state->show({&at, 1}) : status;
    });
}
