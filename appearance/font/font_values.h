// Reading the entries of font dictionaries, of whatever kind they are.
#pragma once

#include <string>

#include "appearance/font/text_font.h"
#include "core/xref_table.h"

class CPDFDictionary;

// The number behind an entry; 0 for null and for what is no number.
float number_value(CPDFXRefTable& xref, const CPDFObj* entry);

// The characters of the name behind an entry; empty for null and for what is no name.
std::string name_value(CPDFXRefTable& xref, const CPDFObj* entry);

// The decoded bytes of the stream behind an entry, up to about `most` of them; empty for null and for what is no stream.
std::string stream_value(CPDFXRefTable& xref, const CPDFObj* entry, int most);

// A width in glyph space as a part of the font size. Widths that no font has are cut.
float width_of_thousandths(float thousandths);

enum FONT_FLAG : int32_t {
    FONT_FIXED_PITCH = 1 << 0,
    FONT_SERIF = 1 << 1,
    FONT_ITALIC = 1 << 6,
    FONT_FORCE_BOLD = 1 << 18,
};

// What a font descriptor says (ISO 32000-2, 9.8).
struct FONT_DESCRIPTOR {
    bool present = false;
    int32_t flags = 0;        // FONT_FLAG
    float missing_width = 0;  // part of the font size
    TEXT_FONT_BOX box;        // zeros when there is none that a font can have
    PDF_REF file = {0, 0};    // the embedded font program; number 0 when there is none
};

FONT_DESCRIPTOR read_descriptor(CPDFXRefTable& xref, const CPDFDictionary& font);
