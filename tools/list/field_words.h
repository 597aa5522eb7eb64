// What a field is and takes, in words for people.
#pragma once

#include <string>

class CPDFDocument;
class CPDFField;

// The flags that count for the field and mean something to its kind, separated by blanks.
std::string flag_words(const CPDFField& field);

// What values the field takes; empty for kinds that take none. Of many states or options the first ones; `listed` counts
// the bytes of options, which many fields may share: beyond a limit they are left out.
std::string taken_words(CPDFDocument& document, const CPDFField& field, size_t& listed);
