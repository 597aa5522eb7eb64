// Embedded fonts as objects of a document (ISO 32000-2, 9.7 and 9.9).
#pragma once

#include "core/object.h"

class CPDFFallbackFont;
class CPDFXRefTable;

// The objects that an embedded font takes.
struct FONT_OBJECTS {
    PDF_REF font = {0, 0};
    PDF_REF descendant = {0, 0};
    PDF_REF descriptor = {0, 0};
    PDF_REF program = {0, 0};
    PDF_REF to_unicode = {0, 0};
    PDF_REF cid_glyphs = {0, 0};  // TrueType only
};

// Writes the font with the codes that are used so far, over the objects of an earlier call. `objects.font` is given; the
// others get their numbers on the first call. False, with nothing changed but numbers handed out, when the font can't be cut
// down to its part or memory runs out.
bool write_font(CPDFXRefTable& xref, const CPDFFallbackFont& font, FONT_OBJECTS& objects);
