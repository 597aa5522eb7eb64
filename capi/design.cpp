// Fields made and changed as JSON says.
#include "capi/edit.h"
#include "formats/design/edit_json.h"

fw_code fw_add_field(fw_document* document, const char* json, unsigned flags, fw_field* field)
{
    hand_out(field, fw_field{0});
    if (!json)
        return bad_argument("the JSON is NULL");
    return edit(document, flags, [&](fw_document& at) {
        PDF_NEW_FIELD request;
        PDF_FIELD_DESIGN design;
        CPDFField* added = nullptr;
        CPDFStatus status = read_new_field(json, request, design);
        if (status.ok())
            status = at.document.add_field(request, edit_of(flags), &added);
        if (status.ok() && design.sets_any()) {
            status = at.document.design_fields({&added, 1}, design, edit_of(flags));
            if (!status.ok() && !at.document.remove_field(*added, edit_of(flags)).ok())
                status.code = PDF_CODE::DAMAGED;
        }
        if (status.ok())
            hand_out(field, at.handles.handle_of(at.document, added));
        return status;
    });
}

fw_code fw_change_field(fw_document* document, fw_field field, const char* json, unsigned flags)
{
    if (!json)
        return bad_argument("the JSON is NULL");
    return edit_field(document, field, flags, [&](fw_document& at, CPDFField& found) {
        PDF_FIELD_CHANGE change;
        PDF_FIELD_DESIGN design;
        std::optional<PDF_MOVE> move;
        CPDFField* const fields[] = {&found};
        CPDFStatus status = read_field_change(json, change, design, move);
        if (status.ok() && change.changes_any())
            status = at.document.change_field(found, change, edit_of(flags));
        if (status.ok() && design.sets_any())
            status = at.document.design_fields(fields, design, edit_of(flags));
        if (status.ok() && move)
            status = at.document.move_widgets(found, *move, edit_of(flags));
        return status;
    });
}
