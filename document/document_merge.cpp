#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/document_state.h"
#include "document/lookup/field_text.h"
#include "document/merge/merge.h"
#include "file/file_reader.h"
#include "forms/field.h"

namespace {

constexpr const char* MERGING = "merge the documents";

}  // namespace

// What a document must be to be a part of another: with its whole form, its widgets drawn as its fields are.
CPDFStatus CPDFDocument::State::begin_merge(PDF_EDIT edit)
{
    values_changed = values_changed || !to_draw.empty();
    CPDFStatus status = begin_edit({}, edit);
    if (status.ok() && edit != PDF_EDIT::FORCE && signatures().is_signed())
        status = CPDFStatus::failed(PDF_CODE::READ_ONLY, "the document is signed: merging breaks its signatures");
    if (status.ok())
        status = list_all();
    if (status.ok())
        bound_widgets();
    return status;
}

// Either form may ask viewers to draw its texts; together they must not, since what the other shows is to stay as it is.
CPDFStatus CPDFDocument::State::draw_before_merge()
{
    const CPDFReadAllowance allowance(reader->budget());
    CPDFStatus status = signatures().is_signed() ? CPDFStatus() : draw_all();
    return status.ok() && allowance.used_up() ? too_much_to(MERGING) : status;
}

CPDFStatus CPDFDocument::State::append(State& other, PDF_SAME_NAMES same_names, std::vector<std::string>& told)
{
    MERGE_RESULT result;
    CPDFStatus status;
    {
        const CPDFReadAllowance allowance(reader->budget());
        const CPDFReadAllowance other_allowance(other.reader->budget());
        EDIT_TARGET into = {*xref, form, root, root_ref, pages(), names, widgets};
        EDIT_TARGET from = {*other.xref,   other.form,  other.root,   other.root_ref,
                            other.pages(), other.names, other.widgets};
        const COPY_SOURCE source = {*other.xref, *other.reader, other.bytes.data(), other.bytes.size()};
        status = merge_document(into, from, source, same_names, result);
        if (status.ok() && allowance.used_up())
            status = too_much_to(MERGING);
    }
    if (status.code == PDF_CODE::BAD_EDIT)
        return status;
    forget_fields();
    unload_form();
    read_root();
    if (status.ok())
        status = load_whole_form();
    for (const JOINED_VALUE& joined : result.values) {
        CPDFField* field = status.ok() ? form.find(joined.field) : nullptr;
        if (field)
            status = put_joined(*field, joined.value);
    }
    told = std::move(result.notes);
    if (other.signatures().is_signed())
        told.emplace_back("its signatures come along, but are not valid in another file");
    return status;
}

// A value that one part of a joined field had, for the widgets of all.
CPDFStatus CPDFDocument::State::put_joined(CPDFField& field, const CPDFValue& value)
{
    PDF_FILL_PLAN plan;
    CPDFStatus status = plan_fill(field, value, PDF_FILL::FORCE, PDF_WORDS::STATES_FIRST, bound_widgets(), plan);
    if (status.ok())
        status = carry_out(plan);
    CPDFField* const shown = &field;
    return status.ok() ? show({&shown, 1}) : status;
}

CPDFStatus CPDFDocument::check_append(PDF_EDIT edit)
{
    return within_memory(MERGING, [&] { return m_state->begin_merge(edit); });
}

CPDFStatus CPDFDocument::append(CPDFDocument& other, PDF_SAME_NAMES names, PDF_EDIT edit,
                                std::vector<std::string>* notes)
{
    return within_memory(MERGING, [&] {
        if (&other == this)
            return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, "a document can't be appended to itself");
        CPDFStatus status = m_state->begin_merge(edit);
        if (status.ok())
            status = other.m_state->begin_merge(edit);
        for (State* state : {m_state.get(), other.m_state.get()}) {
            if (status.ok())
                status = state->draw_before_merge();
        }
        std::vector<std::string> told;
        if (status.ok())
            status = m_state->append(*other.m_state, names, told);
        if (notes)
            *notes = std::move(told);
        return status;
    });
}
