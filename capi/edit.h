// What the calls that change the structure of a form share.
#pragma once

#include "capi/document.h"

// Whether a change that failed was refused before it began; otherwise a part may be done, and fields may be gone.
inline bool is_refusal(PDF_CODE code)
{
    return code != PDF_CODE::OK && code != PDF_CODE::NO_MEMORY && code != PDF_CODE::DAMAGED && code != PDF_CODE::LIMIT;
}

// Runs `operation(fw_document&)`, which changes what fields there are.
template <typename Operation>
fw_code edit(fw_document* document, unsigned flags, const Operation& operation)
{
    return call_with(document, [&](fw_document& at) {
        CPDFStatus status = refuse_check_only(flags);
        if (status.ok())
            status = at.load_form();
        if (!status.ok())
            return result_of(status);
        try {
            status = operation(at);
        } catch (...) {
            at.all_changed();
            throw;
        }
        if (status.ok())
            at.structure_changed();
        else if (!is_refusal(status.code))
            at.all_changed();
        return result_of(status);
    });
}

// The same with a field.
template <typename Operation>
fw_code edit_field(fw_document* document, fw_field field, unsigned flags, const Operation& operation)
{
    return call_with_field(document, field, [&](fw_document&, CPDFField&) {
        return edit(document, flags,
                    [&](fw_document& at) { return operation(at, *at.handles.field_of(at.document, field)); });
    });
}
