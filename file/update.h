// The incremental update that is appended to a file (ISO 32000-2, 7.5.6).
#pragma once

#include <string>

class CPDFFileReader;
class CPDFXRefTable;

// Appends to `out` what follows the input's bytes: every changed object, a cross-reference section of the kind that the
// input's newest section has, and its trailer. Appends nothing when nothing has changed. Reads the sections that are
// still pending.
void write_update(std::string& out, CPDFXRefTable& xref, const CPDFFileReader& reader, const unsigned char* data,
                  size_t size);
