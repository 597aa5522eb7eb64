// Composite fonts, whose codes have several bytes and select glyphs by CID (ISO 32000-2, 9.7).
#pragma once

#include <memory>

#include "appearance/font/text_font.h"

class CPDFDictionary;
class CPDFXRefTable;

// The font of a dictionary whose "Subtype" is Type0. It shows characters only when its program is embedded and its
// "Encoding" is Identity-H or an embedded CMap that writes from left to right: nobody knows what others show. It has those
// that "ToUnicode" tells; without one it has none, but still shapes what the program maps. The store outlives it. Never null.
std::unique_ptr<CPDFTextFont> read_composite_font(CPDFXRefTable& xref, const CPDFDictionary& font);
