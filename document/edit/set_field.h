// Changing what a field is: its flags, its most characters, its default value, its options.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/fill/filler.h"

// What is to change; what is not given stays.
struct PDF_FIELD_CHANGE {
    uint32_t set_flags = 0;
    uint32_t clear_flags = 0;
    std::optional<int32_t> max_length;  // of a text field, in characters; 0 for none
    std::optional<CPDFValue> default_value;
    std::optional<std::vector<PDF_OPTION>> options;  // of a choice field

    bool changes_any() const { return set_flags || clear_flags || max_length || options || default_value; }
};

// Makes `change` on `shape` and notes in `refusals` what does not fit the kind or contradicts itself; `name` is for the
// sentences. The shape borrows the options of `change`.
void change_shape(const PDF_FIELD_CHANGE& change, const std::string& name, PDF_FIELD_SHAPE& shape,
                  CPDFRefusals& refusals);

// Notes in `refusals` when the value of the text field `field` has more than `most` characters; 0 for no limit.
void check_length(CPDFField& field, int32_t most, CPDFRefusals& refusals);

// Changes `field`, which must have a name of its own; refuses what change_shape does, and a maximum or options that its
// value does not fit; a default is taken as a value is that fills the field. `widgets` are those of the form. Nothing is
// changed then. Fails where the field's dictionary, or that of a kid without a name, is missing.
CPDFStatus change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, const CPDFWidgetBinder& widgets);
