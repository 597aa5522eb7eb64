// The form's request to its viewers to draw the fields anew (ISO 32000-2, 12.7.3, "NeedAppearances").
#pragma once

#include "core/entry_change.h"
#include "core/object.h"

// Sets "NeedAppearances" of the form to true, unless it is. The form dictionary is the one that the catalog `root`
// names or holds; in the second case `root` is changed too, and stored as `root_ref`. NO_DICTIONARY without a form.
[[nodiscard]] PDF_CHANGE_RESULT set_need_appearances(CPDFXRefTable& xref, CPDFObj& root, const PDF_REF& root_ref);
