// Which field people mean by a word that is no full name.
#pragma once

#include <string_view>

#include "file/status.h"

class CPDFAcroForm;
class CPDFField;

// The field whose place `place` is among those with a name, in tree order from 1; null where it is no such number.
CPDFField* field_at(CPDFAcroForm& form, std::string_view place);

// The only field with `word` in its name, with letters of either case where none has it as it is; of several the only one
// with it in its own partial name. Or what field_at gives. Null, with `why` a sentence, where there is none.
CPDFField* guess_field(CPDFAcroForm& form, std::string_view word, CPDFStatus& why);

// The refusal of a name that no field has, with the nearest one that a field has.
CPDFStatus no_such_field(CPDFAcroForm& form, std::string_view name);
