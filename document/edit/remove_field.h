// Taking a field out of a document.
#pragma once

#include "document/edit/edit.h"

class CPDFField;

// Removes `field` with all under it, its widgets from the pages that list them, and the fields from the calculation
// order "CO"; the groups above it go, too, when nothing else is in them. "SigFlags" is cleared with the last signature
// field. Ends the fields. Fails, with nothing changed, where the array that lists the field can't be read. The widgets of
// the target are bound.
CPDFStatus erase_field(EDIT_TARGET& target, CPDFField& field);

// Removes `group`, from which a named field was taken, when nothing is in it any more, and the groups above it with it;
// `keep` stays. Both may be null. A group that can't be removed stays, too.
[[nodiscard]] PDF_CHANGE_RESULT erase_empty_groups(EDIT_TARGET& target, CPDFField* group, const CPDFField* keep);
