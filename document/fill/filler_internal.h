// What the kinds of fields share while they are filled.
#pragma once

#include "core/alloc.h"
#include "document/fill/filler.h"

// Where a plan is carried out, and how it goes.
struct FILL_TARGET {
    CPDFXRefTable& xref;
    std::vector<CPDFField*>& changed;
    const CPDFField* lost = nullptr;  // borrowed; a field whose dictionary is missing
    VXFailureCheck memory = {};       // whether memory lasted so far
};

CPDFStatus refuse_fill(PDF_CODE code, const CPDFField& field, const std::string& why);

// "one", "two" or "three": a list for a sentence, cut when it is long.
std::string quoted_list(const std::vector<std::string>& words);

CPDFStatus plan_text(const CPDFValue& value, PDF_FILL_PLAN& plan);
CPDFStatus plan_button(const CPDFValue& value, PDF_WORDS words, const CPDFWidgetBinder& widgets, PDF_FILL_PLAN& plan);
CPDFStatus plan_choice(const CPDFValue& value, PDF_FILL_PLAN& plan);

void apply_text(FILL_TARGET& target, const PDF_FILL_PLAN& plan);
void apply_button(FILL_TARGET& target, const PDF_FILL_PLAN& plan, const CPDFWidgetBinder& widgets);
void apply_choice(FILL_TARGET& target, const PDF_FILL_PLAN& plan);

// Makes `value` the value of `field`, in memory and as "V" of its dictionary; a null value removes "V". "RV" goes with
// the old value, and with `indices` null so does "I". Nothing changes once memory ran out, or without the dictionary.
void store_value(FILL_TARGET& target, CPDFField& field, const CPDFObj& value, const CPDFObj* indices);

// Removes the values of the kids without a name, which show the value of `field` and would contradict it.
void drop_kid_values(FILL_TARGET& target, const CPDFField& field);

// The field that holds the options of a choice field: the nearest one with options, or the field itself.
const CPDFField& options_holder(const CPDFField& field);
