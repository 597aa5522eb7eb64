#include "capi/document.h"

#include "document/notes.h"
#include "formats/list/list_json.h"
#include "forms/field_walk.h"

CPDFStatus fw_document::load_form()
{
    const bool loaded = document.has_loaded_form();
    document.field_notes();  // they are taken while the form is loaded
    CPDFStatus status;
    do
        status = document.load_form();
    while (status.ok() && mend());
    if (!loaded)
        note_document();
    return status;
}

bool fw_document::mend()
{
    if (change > 1 || !handles.empty() || !document.mend())
        return false;
    structure_changed();
    return true;
}

CPDFStatus fw_document::load_list()
{
    CPDFStatus status = load_form();
    if (!status.ok() || has_list)
        return status;
    list.clear();
    for_each_field(document.form(), [this](CPDFField& field) {
        if (is_listed(field, PDF_LISTED::NAMED))
            list.push_back(&field);
    });
    has_list = true;
    return {};
}

void fw_document::structure_changed()
{
    values_changed();
    list.clear();
    has_list = false;
    unique_names.clear();
}

void fw_document::all_changed()
{
    structure_changed();
    handles.end_all();
}

void fw_document::note(const std::string& sentence)
{
    if (!sentence.empty() && noted.insert(sentence).second)
        notes.push_back(sentence);
}

void fw_document::note_all(const std::vector<std::string>& sentences)
{
    for (const std::string& sentence : sentences)
        note(sentence);
}

void fw_document::note_same_names(const std::string& name)
{
    if (unique_names.contains(name))
        return;
    const std::string sentence = same_names_note(document, name);
    note(sentence);
    if (sentence.empty())
        unique_names.insert(name);
}

void fw_document::note_document()
{
    note(document.rescue_note());
    note(adopted_note(document));
    note_all(document.calculation_notes());
    note_all(document.drawing_notes());
}

void fw_document::forget_notes()
{
    notes.clear();
    noted.clear();
    note_document();
}

CPDFStatus check_may_fill(const CPDFDocument& document, unsigned flags)
{
    if (flags & FW_FORCE || document.permits_filling())
        return {};
    return CPDFStatus::failed(PDF_CODE::NOT_PERMITTED,
                              "the file is encrypted, and its permissions forbid to fill the form");
}

fw_code no_document()
{
    return bad_argument("the document is NULL");
}

fw_code stale_field()
{
    return fail_with(FW_STALE, "the field has ended, or is one of another document");
}

fw_code fields_of(fw_document& document, const fw_field* handles, size_t count, std::vector<CPDFField*>& out)
{
    if (count > 0 && !handles)
        return bad_argument("the fields are NULL");
    for (size_t i = 0; i < count; ++i) {
        CPDFField* const field = document.handles.field_of(document.document, handles[i]);
        if (!field)
            return stale_field();
        out.push_back(field);
    }
    return FW_OK;
}
