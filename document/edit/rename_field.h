// Giving a field another name or another place in the tree.
#pragma once

#include <string>

#include "document/edit/edit.h"

class CPDFField;

// Makes `name`, in UTF-8, the partial name of `field`. Refuses a name that is empty or holds a '.', a full name that
// another field has or that is too long to be found by, its own or that of a field under it, and a field without a name,
// which only shows another one.
CPDFStatus set_field_name(EDIT_TARGET& target, CPDFField& field, const std::string& name);

// Makes `field` a kid of `parent`, or a top-level field when that is null, under the same partial name. What it
// inherited it keeps as its own, and it takes over no flags, value or scripts of the new parent. The groups that it
// leaves go when nothing else is in them. Refuses a parent that is the field itself or under it or that can't hold
// fields, a full name that another field has or that is too long, a value longer than the new parent allows, and a field
// without a name. Ends the field and those under it; `moved` is the field then.
CPDFStatus set_field_parent(EDIT_TARGET& target, CPDFField& field, CPDFField* parent, CPDFField*& moved);
