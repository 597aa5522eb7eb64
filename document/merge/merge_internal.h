// What the parts of a merge share.
#pragma once

#include <string>
#include <unordered_map>

#include "document/merge/field_plan.h"
#include "document/merge/merge.h"

using RENAMED = std::unordered_map<std::string, std::string>;

struct MERGE {
    EDIT_TARGET& into;  // borrowed, as the following
    EDIT_TARGET& from;
    CPDFObjectCopier& copier;
    CPDFDictionary& catalog;      // that of `into`, which is stored at the end
    const CPDFDictionary& other;  // that of `from`
    MERGE_RESULT& result;
    RENAMED fonts;         // names of fonts in "DR" as default appearances spell them: that of `from`, then the new one
    RENAMED destinations;  // names of destinations that are strings, as stored
    RENAMED name_destinations;  // those that are names
};

// What every dictionary of `from` loses or changes on its way: names that have changed, and its place in the structure.
void adapt_dictionary(const MERGE& merge, CPDFDictionary& dict);

// The default appearance `appearance` with the new names of its fonts.
std::string renamed_fonts(const RENAMED& fonts, const std::string& appearance);

// Adds the default resources of `from` to the form dictionary `form` of `into`, and notes the fonts that get other names.
void merge_resources(MERGE& merge, CPDFDictionary& form, const CPDFDictionary& other);

// Adds the fields as planned, and everything else of the form.
CPDFStatus merge_form(MERGE& merge, const FIELD_PLAN& plan);

// The name trees and the destinations, noting those that get other names; before anything else is copied.
void merge_names(MERGE& merge);

CPDFStatus merge_pages(MERGE& merge);
void merge_page_labels(MERGE& merge);
void merge_outlines(MERGE& merge);
void merge_layers(MERGE& merge);

// A copy of what is under `key`, if it is of that kind, else an empty one; for a change of it that is then set anew. Null
// when memory runs out.
CPDFDictionary* copy_dictionary(CPDFXRefTable& xref, const CPDFDictionary& owner, const char* key, CPDFObj& out);
CPDFArray* copy_array(CPDFXRefTable& xref, const CPDFDictionary& owner, const char* key, CPDFObj& out);
