// The signature value of a signature field (ISO 32000-2, 12.8.1).
#pragma once

#include <cstdint>

#include "core/alloc.h"

class CPDFDictionary;
class CPDFXRefTable;

// Tells whether there is a signature; nothing is verified.
class CPDFSign : public VXNew<CPDFSign> {
public:
    // Reads `dict`, which may be freed afterwards.
    void load(CPDFXRefTable* xref, const CPDFDictionary* dict);

    int32_t m_data_cnt = 0;  // bytes of "Contents"; above 0 when the field is signed
};
