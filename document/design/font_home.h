// The fonts that fields of a form can be set with.
#pragma once

#include <string>

#include "document/edit/edit.h"

// What is wrong with `name` for a font, which is a resource of the form's "DR", one of the standard 14 fonts by its own name
// or that of a family as wide, or the path of a file; a sentence, empty when nothing is.
std::string wrong_font(const EDIT_TARGET& target, const std::string& name);

// Makes `resource` the name that the font has in "DR", where one that is not there is put. The form dictionary is an object
// of its own. Fails when memory runs out.
CPDFStatus find_font(EDIT_TARGET& target, const std::string& name, std::string& resource);
