#include "document/document.h"

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document_state.h"
#include "document/edit/remove_field.h"
#include "document/edit/rename_field.h"
#include "file/file_reader.h"
#include "forms/field.h"

// What every edit begins with: the whole form, the checks, and what would not survive the change. `field` may be null.
CPDFStatus CPDFDocument::State::begin_edit(CPDFField* field, PDF_EDIT edit)
{
    CPDFStatus status = load_whole_form();
    if (status.ok() && edit != PDF_EDIT::FORCE)
        status = check_permission(reader->permits_editing());
    if (status.ok())
        status = draw();
    if (!status.ok())
        return status;
    redraw.reset();  // the form's fonts may change
    forget_scripts();
    shown_options = {};
    to_draw.clear();
    filled.clear();
    edited = true;
    return edit == PDF_EDIT::FORCE ? CPDFStatus() : signatures().check_edit(field);
}

// Carries out `operation(EDIT_TARGET&)` on `field`, which may be null.
template <typename Operation>
CPDFStatus CPDFDocument::State::edit(CPDFField* field, PDF_EDIT edit, const Operation& operation)
{
    return within_memory("change the form", [&] {
        CPDFStatus status = begin_edit(field, edit);
        if (!status.ok())
            return status;
        const CPDFReadAllowance allowance(reader->budget());
        EDIT_TARGET target = {*xref, form, root, root_ref, pages(), names, widgets};
        return operation(target);
    });
}

CPDFStatus CPDFDocument::add_field(const PDF_NEW_FIELD& field, PDF_EDIT edit, CPDFField** out)
{
    return m_state->edit(nullptr, edit, [&](EDIT_TARGET& target) {
        if (field.entries.default_value)
            m_state->bound_widgets();
        CPDFField* added = nullptr;
        CPDFStatus status = insert_field(target, field, added);
        if (!status.ok())
            return status;
        if (out)
            *out = added;
        return m_state->show({&added, 1});
    });
}

CPDFStatus CPDFDocument::remove_field(CPDFField& field, PDF_EDIT edit)
{
    return m_state->edit(&field, edit, [&](EDIT_TARGET& target) {
        if (field.has_sign())
            m_state->guard.reset();
        m_state->bound_widgets();
        return erase_field(target, field);
    });
}

CPDFStatus CPDFDocument::rename_field(CPDFField& field, const std::string& name, PDF_EDIT edit)
{
    return m_state->edit(&field, edit, [&](EDIT_TARGET& target) { return set_field_name(target, field, name); });
}

CPDFStatus CPDFDocument::move_field(CPDFField& field, CPDFField* parent, PDF_EDIT edit, CPDFField** out)
{
    return m_state->edit(&field, edit, [&](EDIT_TARGET& target) {
        CPDFField* moved = nullptr;
        CPDFStatus status = set_field_parent(target, field, parent, moved);
        if (out)
            *out = moved;
        return status;
    });
}

CPDFStatus CPDFDocument::change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, PDF_EDIT edit)
{
    return m_state->edit(&field, edit, [&](EDIT_TARGET&) {
        CPDFStatus status = ::change_field(field, change, m_state->bound_widgets());
        constexpr uint32_t DRAWN = FIELD_MULTILINE | FIELD_PASSWORD | FIELD_COMB;
        const bool drawn =
            change.options || change.max_length || ((change.set_flags | change.clear_flags) & DRAWN) != 0;
        CPDFField* const shown = &field;
        return status.ok() && drawn ? m_state->show({&shown, 1}) : status;
    });
}
