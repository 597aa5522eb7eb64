// Full names that fields are to have, and the groups on the way to them.
#pragma once

#include <string>

#include "document/edit/edit.h"

class CPDFField;

// Notes in `refusals` what is wrong with `name`, in UTF-8, for a new field with `height` levels of widgets under it: no
// name, one that is taken or too long or deep to be found again, and one below a field that can't hold others.
void check_new_name(EDIT_TARGET& target, const std::string& name, size_t height, CPDFRefusals& refusals);

// The group above a field of that name, which was checked; missing ones are made from the top down. Null for a top-level
// field. The form dictionary is an object of its own.
CPDFField* make_groups(EDIT_TARGET& target, const std::string& name);

// The partial name of a field of that name.
std::string last_part(const std::string& name);
