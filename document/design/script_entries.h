// The scripts of a field, in its dictionary and in the form's order of calculation.
#pragma once

#include "document/design/field_design.h"

class CPDFInheritedEntries;

// Notes in `refusals` where `field` takes no scripts of that sort, and what it would be calculated from that isn't there.
void check_scripts(EDIT_TARGET& target, const CPDFField& field, const PDF_FIELD_DESIGN& design, CPDFRefusals& refusals);

// The fields that `calculation` means for `field`: those of its names, and all that its patterns fit.
std::vector<std::string> calculation_names(EDIT_TARGET& target, const CPDFField& field,
                                           const PDF_CALCULATION& calculation);

// Writes "AA", other scripts there stay, and "CO" of the form: a field that is new there comes last.
PDF_CHANGE_RESULT apply_scripts(EDIT_TARGET& target, const CPDFField& field, const PDF_FIELD_DESIGN& design,
                                CPDFInheritedEntries& inherited);
