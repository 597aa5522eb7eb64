// Changing the form itself.
#include "capi/edit.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
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
    CPDFStatus status = at.document.move_field(*field, parent, edit_of(flags), &moved);
    if (!status.ok())
        return status;
    at.handles.end(old);
    at.handles.end_missing(at.document);
    if (!moved)
        return CPDFStatus::failed(PDF_CODE::DAMAGED, "the field is moved, but can't be read at its new place");
    at.handles.replace(handle, moved);
    field = moved;
    return status;
}

struct NEW_NAME {
    std::string part;
    std::string group;
};

// Both at once, or nothing: either may stand in the way of the other for a moment.
CPDFStatus rename_and_move(fw_document& at, fw_field handle, CPDFField& found, const NEW_NAME& to, unsigned flags)
{
    const NEW_NAME from = {utf8_of(found.m_name), found.m_parent ? full_name(*found.m_parent) : std::string()};
    CPDFField* field = &found;
    CPDFStatus status = at.document.rename_field(*field, to.part, edit_of(flags));
    if (status.ok()) {
        status = move_field(at, handle, field, to.group, flags);
        if (is_refusal(status.code) && !at.document.rename_field(*field, from.part, edit_of(flags)).ok())
            status.code = PDF_CODE::DAMAGED;
        return status;
    }
    if (is_refusal(status.code) && move_field(at, handle, field, to.group, flags).ok()) {
        status = at.document.rename_field(*field, to.part, edit_of(flags));
        if (is_refusal(status.code) && !move_field(at, handle, field, from.group, flags).ok())
            status.code = PDF_CODE::DAMAGED;
    }
    return status;
}

}  // namespace

fw_code fw_remove_field(fw_document* document, fw_field field, unsigned flags)
{
    return edit_field(document, field, flags, [&](fw_document& at, CPDFField& found) {
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
    return edit_field(document, field, flags, [&](fw_document& at, CPDFField& found) {
        if (name && !is_utf8(name))
            return CPDFStatus::failed(PDF_CODE::BAD_EDIT, "the name " + in_quotes(name) + " is not UTF-8");
        if (name && group)
            return rename_and_move(at, field, found, {name, group}, flags);
        CPDFField* moved = &found;
        if (group)
            return move_field(at, field, moved, group, flags);
        return name ? at.document.rename_field(found, name, edit_of(flags)) : CPDFStatus();
    });
}

fw_code fw_flatten(fw_document* document, unsigned flags)
{
    return edit(document, flags, [flags](fw_document& at) {
        CPDFStatus status = at.document.flatten(edit_of(flags));
        if (status.ok())
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
    return edit(document, flags, [&](fw_document& at) {
        std::vector<std::string> notes;
        CPDFStatus status = other->load_form();
        if (status.ok())
            status = at.document.append(other->document, static_cast<PDF_SAME_NAMES>(names), edit_of(flags), &notes);
        at.all_changed();
        other->all_changed();
        at.note_all(notes);
        return status;
    });
}
