// Changing what a field is: its flags, its most characters, its default value, its options.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/fill/filler.h"
#include "forms/field_kind.h"

// One option of a choice field, in UTF-8. An empty `text` shows the value.
struct PDF_OPTION {
    std::string value;
    std::string text;
};

// What is to change; what is not given stays.
struct PDF_FIELD_CHANGE {
    uint32_t set_flags = 0;
    uint32_t clear_flags = 0;
    std::optional<int32_t> max_length;  // of a text field, in characters; 0 for none
    std::optional<CPDFValue> default_value;
    std::optional<std::vector<PDF_OPTION>> options;  // of a choice field
};

// A flag that people may set, under its public name, and the kinds of fields that have it.
struct PDF_FLAG_WORD {
    const char* word;
    uint32_t flag;   // PDF_FIELD_FLAG
    uint32_t kinds;  // a bit for each PDF_FIELD_KIND_ID
    const char* help;
};

std::span<const PDF_FLAG_WORD> flag_words();

// A field as it will be, and as far as a change is checked against it.
struct FIELD_SHAPE {
    const PDF_FIELD_KIND* kind;  // a row of the table
    uint32_t flags = 0;
    int32_t max_length = 0;
    std::vector<PDF_OPTION> options;
    std::vector<std::string> states;  // on states of a button, bytes of names
};

// Makes `change` on `shape` and notes in `refusals` what does not fit the kind or contradicts itself; `name` is for the
// sentences.
void change_shape(const PDF_FIELD_CHANGE& change, const std::string& name, FIELD_SHAPE& shape, CPDFRefusals& refusals);

// Makes `out` what "Opt" or "DV" say.
void make_options(const std::vector<PDF_OPTION>& options, CPDFObj& out);
void make_value(const FIELD_SHAPE& shape, const CPDFValue& value, CPDFObj& out);

// Notes in `refusals` when the value of the text field `field` has more than `most` characters; 0 for no limit.
void check_length(CPDFField& field, int32_t most, CPDFRefusals& refusals);

// Changes `field`, which must have a name of its own; refuses what change_shape does, and a maximum or options that its
// value does not fit. `widgets` are those of the form. Nothing is changed then.
CPDFStatus change_field(CPDFField& field, const PDF_FIELD_CHANGE& change, const CPDFWidgetBinder& widgets);
