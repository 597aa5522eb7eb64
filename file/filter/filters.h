// Stream filters (ISO 32000-2, 7.4): from the stored bytes of a stream to its decoded data.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/growable.h"

class CPDFDictionary;
class CPDFStream;
class CPDFXRefTable;

// Bytes that double their room when it is used up.
using CPDFBytes = CPDFGrowable<uint8_t, 256, 1>;

// Decodes `size` bytes of stream data into `out` as "Filter" and "DecodeParms" of the stream dictionary ask; without a
// filter they are copied. The abbreviated names of inline images are known too. References in the two entries are
// followed through `xref`; with null they count as damage.
// Truncated or corrupt data gives what could be decoded up to there. No stage gives more than LIMIT_DECODED_STREAM bytes,
// nor more than LIMIT_DECODE_RATIO times `size` plus LIMIT_DECODE_SLACK: the data ends there.
// False, with `out` empty, for a filter that is not known here (image codecs), more than LIMIT_FILTERS of
// them, or when memory runs out.
// `budget`, when not null, is how many bytes all stages together may give, where some predictors count for more; the data
// ends there, too. What was given is taken off.
bool decode_stream(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size, CPDFBytes& out,
                   uint64_t* budget = nullptr);

// A reader that takes `bytes`; the caller owns it.
CPDFStream* make_decoded_stream(CPDFBytes&& bytes);
