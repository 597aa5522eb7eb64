// Changing the form itself.
#include "capi/edit.h"
#include "document/lookup/field_text.h"
#include "forms/field_walk.h"

namespace {

std::vector<CPDFField*> tree_of(CPDFField& top)
{
    std::vector<CPDFField*> fields;
    for_each_field(top, [&fields](CPDFField& field) { fields.push_back(&field); });
    return fields;
}

// The handle of the field goes on; those under it end, since they are made anew.
CPDFStatus move_field(fw_document& at, fw_field handle, CPDFField*& field, const std::string& group, unsigned flags)
{
    CPDFField* const parent = group.empty() ? nullptr : at.document.field(group);
    if (!group.empty() && !parent)
        return at.document.no_field(group);
    const std::vector<CPDFField*> old = tree_of(*field);
    CPDFField* moved = nullptr;
    const CPDFStatus status = at.document.move_field(*field, parent, edit_of(flags), &moved);
    if (!status.ok())
        return status;
    at.handles.end(old);
    at.handles.end_missing(at.document);
    if (moved)
        at.handles.replace(handle, moved);
    field = moved;
    return {};
}

}  // namespace

fw_code fw_remove_field(fw_document* document, fw_field field, unsigned flags)
{
    return edit_field(document, field, [&](fw_document& at, CPDFField& found) {
        const std::vector<CPDFField*> old = tree_of(found);
        CPDFStatus status = at.document.remove_field(found, edit_of(flags));
        if (status.ok()) {
            at.handles.end(old);
            at.handles.end_missing(at.document);
        }
        return status;
    });
}

fw_code fw_rename_field(fw_document* document, fw_field field, const char* name, const char* group, unsigned flags)
{
    return edit_field(document, field, [&](fw_document& at, CPDFField& found) {
        if (name && !is_utf8(name))
            return CPDFStatus::failed(PDF_CODE::BAD_EDIT, "the name " + in_quotes(name) + " is not UTF-8");
        CPDFField* at_field = &found;
        CPDFStatus status = group ? move_field(at, field, at_field, group, flags) : CPDFStatus();
        if (status.ok() && name && at_field)
            status = at.document.rename_field(*at_field, name, edit_of(flags));
        return status;
    });
}

fw_code fw_flatten(fw_document* document, unsigned flags)
{
    return edit(document, [flags](fw_document& at) {
        CPDFStatus status = at.document.flatten(edit_of(flags));
        if (status.code != PDF_CODE::NOT_PERMITTED && status.code != PDF_CODE::READ_ONLY)
            at.all_changed();
        return status;
    });
}

fw_code fw_append(fw_document* document, fw_document* other, fw_same_names names, unsigned flags)
{
    if (!other || other == document)
        return bad_argument(other ? "a document is not appended to itself" : "the other document is NULL");
    if (names < FW_REFUSE || names > FW_JOIN)
        return bad_argument("there is no such way to treat fields with one name");
    return edit(document, [&](fw_document& at) {
        std::vector<std::string> notes;
        CPDFStatus status = other->load_form();
        if (status.ok())
            status = at.document.append(other->document, static_cast<PDF_SAME_NAMES>(names), edit_of(flags), &notes);
        at.note_all(notes);
        at.all_changed();
        other->all_changed();
        return status;
    });
}
