// What a field is and takes, in words for people.
#pragma once

#include <string>

class CPDFDocument;
class CPDFField;

// The flags that count for the field and mean something to its kind, separated by blanks.
std::string flag_words(const CPDFField& field);

// What values the field takes; empty for kinds that take none. Of many states or options the first ones.
std::string taken_words(CPDFDocument& document, const CPDFField& field);
