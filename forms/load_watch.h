// For who needs more of the dictionaries of a form than its fields keep.
#pragma once

#include "core/key_set.h"

class CPDFDictionary;
struct PDF_REF;

// What loading looks at; the appearance and layout entries of a field are not even built.
inline constexpr CPDFKeySet FIELD_KEYS{"T",  "V",  "FT",  "Ff", "Kids",   "Parent", "Subtype",
                                       "DA", "DV", "Opt", "I",  "MaxLen", "AA",     "RV"};

// Sees every dictionary that loading reads, of fields and widgets, so that none needs to be read once more.
class CPDFLoadWatch {
public:
    // FIELD_KEYS, and what the watch looks at.
    virtual const CPDFKeySet& keys() const = 0;

    // Called before the field is made. The entries that are not among FIELD_KEYS may be taken. A dictionary may come twice.
    virtual void see(const PDF_REF& ref, CPDFDictionary& dict) = 0;

protected:
    ~CPDFLoadWatch() = default;
};
