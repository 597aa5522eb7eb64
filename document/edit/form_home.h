// The form dictionary itself: where it stands, and the fonts it offers.
#pragma once

#include "document/edit/edit.h"

// Makes the form dictionary an object of its own, which the engine's operations need: one that the catalog holds
// directly moves, and where there is none the one that `make_form` spells is made. Fails when memory runs out.
CPDFStatus settle_form(EDIT_TARGET& target, std::string (*make_form)(CPDFXRefTable& xref) = nullptr);

// Makes sure that "DR" has a font under `name`; a missing one is the standard font `base_font`, in the encoding of
// Windows unless it is one of symbols. Fails when memory runs out.
CPDFStatus need_font(EDIT_TARGET& target, const char* name, const char* base_font);
