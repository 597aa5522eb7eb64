// Which value of an XFA data set each field stands for.
#pragma once

#include <vector>

#include "document/xfa/xfa_data.h"

class CPDFAcroForm;
class CPDFField;

struct XFA_BINDING {
    CPDFField* field;  // borrowed from the form
    int32_t node;      // of the data
    int32_t element;   // of the template, a field or an exclusion group; -1 when there is none
};

// Walks the template as a program that merges it with data does: subforms claim groups and fields values of their names in document
// order, those bound to nothing are passed over, global fields share the value of their name, references are followed. Elements for which
// the data have nothing are added.
//
// `tree` holds the template in the element `top`; without it, null, fields go by their own names. `lost` gets the fields whose place in
// the data is not known. Fails where that takes more work than is supported.
CPDFStatus bind_xfa(CPDFAcroForm& form, CPDFXfaData& data, const CPDFXmlTree* tree, int32_t top,
                    std::vector<XFA_BINDING>& bound, std::vector<const CPDFField*>& lost);
