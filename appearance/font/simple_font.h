// Simple fonts, whose codes are single bytes (ISO 32000-2, 9.6).
#pragma once

#include <memory>

#include "appearance/font/standard/standard_font.h"
#include "appearance/font/text_font.h"

class CPDFDictionary;
class CPDFXRefTable;

// The font of a dictionary whose "Subtype" is Type1, MMType1 or TrueType. What it shows of an embedded program is what the
// program has. The store outlives it. Never null.
std::unique_ptr<CPDFTextFont> read_simple_font(CPDFXRefTable& xref, const CPDFDictionary& font);

// The font of a dictionary that names a standard font and, for a Latin one, WinAnsiEncoding. Symbol and ZapfDingbats show
// a character that they lack with its code, so that the "4" of a button's "CA" is a check mark.
std::unique_ptr<CPDFTextFont> make_standard_font(STANDARD_FONT font);
