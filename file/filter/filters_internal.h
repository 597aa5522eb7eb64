// The stages of a filter chain, one function per filter.
#pragma once

#include <cstddef>
#include <cstdint>

#include "file/filter/filters.h"

// The entries of a decode-parameter dictionary, at their defaults (ISO 32000-2, tables 8 and 12).
struct CPDFFilterParms {
    int32_t predictor = 1;
    int32_t colors = 1;
    int32_t bits = 8;  // per component
    int32_t columns = 1;
    int32_t early_change = 1;
};

// What a stage reads.
struct CPDFFilterInput {
    const uint8_t* data;  // borrowed from the caller, or from the stage before
    size_t size;
    size_t limit;  // a stage stops once it has given that many bytes; it may give a few more
    CPDFFilterParms parms;
};

// Each appends the decoded data to the empty `out`, up to the first byte that makes no sense. False only when memory
// runs out.
bool decode_flate(const CPDFFilterInput& in, CPDFBytes& out);
bool decode_lzw(const CPDFFilterInput& in, CPDFBytes& out);
bool decode_ascii_hex(const CPDFFilterInput& in, CPDFBytes& out);
bool decode_ascii85(const CPDFFilterInput& in, CPDFBytes& out);
bool decode_run_length(const CPDFFilterInput& in, CPDFBytes& out);

// Undoes the predictor of Flate and LZW data in place; an unknown one leaves the data as it is. The last row may be
// incomplete.
void undo_predictor(const CPDFFilterParms& parms, CPDFBytes& bytes);
