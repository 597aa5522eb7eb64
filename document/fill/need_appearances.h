// The form's request to its viewers to draw the fields anew (ISO 32000-2, 12.7.3, "NeedAppearances").
#pragma once

#include "core/entry_change.h"
#include "core/object.h"

// Whether the form that the catalog `root` names or holds asks for it.
bool needs_appearances(CPDFXRefTable& xref, const CPDFObj& root);

// Each changes the flag, unless it is so already: to true, or to nothing. Where the catalog holds the form dictionary, `root`
// is changed too, and stored as `root_ref`. NO_DICTIONARY without a form.
[[nodiscard]] PDF_CHANGE_RESULT set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref);
[[nodiscard]] PDF_CHANGE_RESULT clear_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref);
