// What the kinds of fields share while they are filled.
#pragma once

#include "core/alloc.h"
#include "document/fill/filler.h"

// Where a plan is carried out, and how it goes.
struct PDF_FILL_TARGET {
    CPDFXRefTable& xref;
    std::vector<CPDFField*>& changed;
    const CPDFField* lost = nullptr;  // borrowed; a field whose dictionary is missing
    VXFailureCheck memory = {};       // whether memory lasted so far
};

// A value that the field can't take: the end of a sentence about it.
inline CPDFStatus refuse_value(std::string why, PDF_CODE code = PDF_CODE::WRONG_KIND)
{
    return CPDFStatus::failed(code, std::move(why));
}

// "one", "two" or "three": a list for a sentence, cut when it is long.
std::string quoted_list(const std::vector<std::string>& words);

// plan_value for one kind of field each.
CPDFStatus plan_text(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_FILL_PLAN& plan);
CPDFStatus plan_button(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_WORDS words, PDF_FILL_PLAN& plan);
CPDFStatus plan_choice(const PDF_FIELD_SHAPE& shape, const CPDFValue& value, PDF_FILL_PLAN& plan);

void apply_button(PDF_FILL_TARGET& target, const PDF_FILL_PLAN& plan, const CPDFWidgetBinder& widgets);
void apply_choice(PDF_FILL_TARGET& target, const PDF_FILL_PLAN& plan);

// Makes `value` the value of `field`, in memory and as "V" of its dictionary; a null value removes "V". "RV" goes with
// the old value, and with `indices` null so does "I". Nothing changes once memory ran out, or without the dictionary.
void store_value(PDF_FILL_TARGET& target, CPDFField& field, const CPDFObj& value, const CPDFObj* indices);

// Removes the values of the kids without a name, which show the value of `field` and would contradict it.
void drop_kid_values(PDF_FILL_TARGET& target, const CPDFField& field);
