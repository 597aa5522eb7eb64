// Appending one document to another: its pages, its fields, and what leads to them.
#pragma once

#include <string>
#include <vector>

#include "document/edit/edit.h"
#include "document/fill/filler.h"
#include "document/merge/object_copier.h"
#include "document/merge/same_names.h"

// A joined field of which one part had a value that the other lacked.
struct JOINED_VALUE {
    PDF_REF field;
    CPDFValue value;
};

struct MERGE_RESULT {
    std::vector<JOINED_VALUE> values;  // to be put into the fields once the form is loaded anew
    std::vector<std::string> notes;    // a sentence for each thing that did not come along
};

// Appends the document `from`, which is that of `source`, to `into`. Of `from` come all pages as they are, the fields under
// their groups, "DR", "CO", outlines, name trees, page labels and layers; not its structure tree, XFA data, metadata and what
// happens when it is opened. `into` loses its XFA data, which describe its own pages alone. The form of `into` is to be
// loaded anew, and its pages, names and widgets with it; both documents have their widgets bound. Refuses, with
// nothing changed, what `names` does not allow; after another failure a part of the change is made.
CPDFStatus merge_document(EDIT_TARGET& into, EDIT_TARGET& from, const COPY_SOURCE& source, PDF_SAME_NAMES names,
                          MERGE_RESULT& result);
