// What the calls that change the structure of a form share.
#pragma once

#include "capi/document.h"

// Runs `operation(fw_document&)`, which changes what fields there are.
template <typename Operation>
fw_code edit(fw_document* document, const Operation& operation)
{
    return call_with(document, [&](fw_document& at) {
        if (const CPDFStatus status = at.load_form(); !status.ok())
            return result_of(status);
        at.structure_changed();
        return result_of(operation(at));
    });
}

// The same with a field.
template <typename Operation>
fw_code edit_field(fw_document* document, fw_field field, const Operation& operation)
{
    return call_with_field(document, field, [&](fw_document&, CPDFField&) {
        return edit(document, [&](fw_document& at) { return operation(at, *at.handles.field_of(at.document, field)); });
    });
}
