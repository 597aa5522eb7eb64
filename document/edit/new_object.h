// New objects of a document, spelled as they stand in a file.
#pragma once

#include <string>

#include "core/object.h"

// Stores a new object, or a stream with these entries besides its length. Object number 0 when memory ran out.
PDF_REF new_object(CPDFXRefTable& xref, const std::string& text);
PDF_REF new_stream(CPDFXRefTable& xref, const std::string& entries, const std::string& data);

// Makes `out`, at tag 0, the object that `text` spells.
void parse_syntax(const std::string& text, CPDFObj& out);

// How a value is spelled: a text in UTF-8 as a text string, bytes as a name, a reference, a number with at most so many
// decimals.
std::string string_syntax(const std::string& text);
std::string name_syntax(const std::string& name);
std::string ref_syntax(const PDF_REF& ref);
std::string number_syntax(double number, int decimals = 3);
