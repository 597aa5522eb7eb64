// Where the fields of one form go in another.
#pragma once

#include <string>
#include <vector>

#include "document/merge/merge.h"

// A field that goes, with all under it, below the group `parent` of the other form, or to its top for null.
struct FIELD_PLACEMENT {
    CPDFField* field;  // borrowed from the source's form, as all these from theirs
    CPDFField* parent;
    std::string name;  // its new partial name, empty where it keeps its own
};

// Two fields that become one, or two groups whose fields come together.
struct FIELD_PAIR {
    CPDFField* field;
    CPDFField* other;  // of the document that is appended to
};

struct FIELD_PLAN {
    std::vector<FIELD_PLACEMENT> placements;
    std::vector<FIELD_PAIR> groups;
    std::vector<FIELD_PAIR> joined;
};

// Decides it for all fields of `from`. Groups of one name are one group, whatever `names` says of fields. Refuses fields
// of one full name where they must not be, or can't be joined. Changes nothing.
CPDFStatus plan_fields(const EDIT_TARGET& into, const EDIT_TARGET& from, PDF_SAME_NAMES names, FIELD_PLAN& plan);
