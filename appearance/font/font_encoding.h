// Which glyph each code of a simple font names (ISO 32000-2, 9.6.5).
#pragma once

#include "appearance/font/standard/glyph_encoding.h"

class CPDFDictionary;
class CPDFFontProgram;
class CPDFXRefTable;

// The names by "Encoding" with its "Differences", and where that leaves it open by the font itself: the standard font that
// its name means, or the embedded `program`. All empty for a symbolic TrueType program, whose codes have no names.
GLYPH_NAMES read_glyph_names(CPDFXRefTable& xref, const CPDFDictionary& font, CPDFFontProgram& program);
