// The scripts of a document itself, which prepare what those of its fields use (ISO 32000-2, 7.7.4, "JavaScript").
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/object.h"

class CPDFDictionary;

struct PDF_DOCUMENT_SCRIPT {
    std::string name;
    std::string text;  // UTF-8
};

// Calls `visit` with the names and actions of the name tree "JavaScript" under "Names" of the catalog `root`, in the order of
// the file. No node counts twice, nor one below LIMIT_PAGE_DEPTH.
void visit_document_scripts(CPDFXRefTable& xref, const CPDFDictionary& root,
                            const std::function<void(const std::string& name, const CPDFObj& action)>& visit);

// The scripts among them, in the order in which they run, by name; LIMIT_ACTIONS at most.
std::vector<PDF_DOCUMENT_SCRIPT> read_document_scripts(CPDFXRefTable& xref, const CPDFDictionary& root);
