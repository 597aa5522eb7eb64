// Sentences about a document that people should know although all went well.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class CPDFDocument;

// Each is empty where there is nothing to say.

// Fields that only pages know were taken for fields of the form.
std::string adopted_note(const CPDFDocument& document);

// What a change of values leaves undone: XFA data that the form keeps beside its fields, unless they are `rewritten`; or that
// there are none to rewrite.
std::string xfa_note(CPDFDocument& document, bool rewritten);

// Several fields have this full name.
std::string same_names_note(CPDFDocument& document, std::string_view name);

// So many scripts did not run.
std::string skipped_scripts_note(size_t count);
