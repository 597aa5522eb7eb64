// Form data put into a document: first a plan, which checks every value, then the change.
//
//     CPDFFormData data;
//     CPDFStatus status = read_form_data("data.json", data);
//     const std::vector<PDF_DATA_ITEM> items = plan_data(document, data, PDF_FILL::RESPECT_READ_ONLY);
//     if (status.ok() && (status = refusals_of(items)).ok())
//         status = apply_data(document, items);
#pragma once

#include <vector>

#include "document/fill/filler.h"
#include "formats/import/form_data.h"

class CPDFDocument;

// An entry of the data and what becomes of it.
struct PDF_DATA_ITEM {
    PDF_FORM_ENTRY entry;
    CPDFStatus status;    // why the entry is refused, in a sentence that names it; ok when it is not
    PDF_FILL_PLAN plan;   // of an entry that is accepted; its field is borrowed from the document
    bool is_xfa = false;  // the name is the path of a value in the XFA data, and no field
};

// Checks all of `data` against the fields of the document, which does not change. There is an item for each field, in the
// order of the data, for each value in the XFA data of a form that has its values there alone, and one for each entry that is
// refused: a name that no field has, text that is no UTF-8 or that PDF can't hold, and what CPDFDocument::check_value refuses.
// Values for one list box that takes several are joined; another second value for a field is refused, unless it is the same. An
// empty text from a file leaves a field alone that takes no value. Where the progress of the document asks for the end there is one
// item alone, which says so.
std::vector<PDF_DATA_ITEM> plan_data(CPDFDocument& document, const CPDFFormData& data, PDF_FILL fill);

// Fails with the sentences of all items that are refused, "; " between them, and the code of the first; ok where none is.
CPDFStatus refusals_of(const std::vector<PDF_DATA_ITEM>& items);

// Carries out the plans of the items that are accepted, up to the first that fails as CPDFDocument::apply does, and calculates
// the form. Hands out the fields that the calculation changed in `calculated` unless that is null.
CPDFStatus apply_data(CPDFDocument& document, const std::vector<PDF_DATA_ITEM>& items,
                      std::vector<CPDFField*>* calculated = nullptr);
