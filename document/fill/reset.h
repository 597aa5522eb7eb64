// Bringing fields of any kind back to their defaults: first a plan that checks, then the change.
#pragma once

#include <vector>

#include "file/status.h"

class CPDFAcroForm;
class CPDFField;
class CPDFWidgetBinder;
class CPDFXRefTable;

// What a reset will do. Borrowed from the form.
struct PDF_RESET_PLAN {
    std::vector<CPDFField*> tops;    // the outermost fields that are reset, each with all under it
    std::vector<CPDFField*> fields;  // those fields among them that have a value of their own, in tree order
};

// Plans to reset `chosen` with all under them, every field when it is null; a field without a name stands for the one
// whose value it shows. Refuses when the defaults would take more than LIMIT_RESET_VALUES bytes; nothing is changed.
CPDFStatus plan_reset(CPDFAcroForm& form, const std::vector<CPDFField*>* chosen, const CPDFWidgetBinder& widgets,
                      PDF_RESET_PLAN& plan);

// Carries out a plan: CPDFField::reset, then what it leaves to its callers: "V" and "I" of the fields ("RV" is
// dropped), their memory, and all their widgets. Appends the fields whose values it changes to `changed`. Nothing more
// changes once memory ran out. Fails where a field's dictionary is missing.
CPDFStatus apply_reset(CPDFXRefTable& xref, const PDF_RESET_PLAN& plan, const CPDFWidgetBinder& widgets,
                       std::vector<CPDFField*>& changed);
