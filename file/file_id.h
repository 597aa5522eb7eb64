// The file identifier (ISO 32000-2, 14.4).
#pragma once

#include <string>

class CPDFDictionary;

// Sets "ID" of `trailer`: the first half is the one of `before`, or new when it has none; the second half is made from
// the bytes of `update`, so that equal changes of one file give equal output.
void set_file_id(CPDFDictionary& trailer, const CPDFDictionary& before, const std::string& update);
