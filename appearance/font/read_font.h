// The fonts that a form itself has, from their dictionaries (ISO 32000-2, 9.5 to 9.8).
#pragma once

#include <memory>

#include "appearance/font/simple_font.h"
#include "appearance/font/text_font.h"

class CPDFObj;

// The font of a dictionary, given directly or as a reference; null when it is none that text is set with: another kind of
// object, a Type 3 font, one without a "Subtype". A font that can't be understood has no characters. The program of an
// embedded font is read when the first character asks for it. The store outlives the font.
std::unique_ptr<CPDFTextFont> read_font(CPDFXRefTable& xref, const CPDFObj& font);
