// The fonts of this machine that one document uses.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "appearance/font/font_style.h"
#include "appearance/font/text_font.h"
#include "core/object.h"

class CPDFFallbackFont;
class CPDFMachineFonts;
class CPDFXRefTable;

// Gives out fonts for characters that a document's own fonts lack, and embeds them. Used by one caller at a time; ends with
// the document's changes: after CPDFXRefTable::discard_changes a new one is needed.
class CPDFFallbackFonts {
public:
    // The fonts of the program; the other way `machine`, which is borrowed and outlives this.
    CPDFFallbackFonts();
    explicit CPDFFallbackFonts(CPDFMachineFonts& machine);
    ~CPDFFallbackFonts();
    CPDFFallbackFonts(const CPDFFallbackFonts&) = delete;
    CPDFFallbackFonts& operator=(const CPDFFallbackFonts&) = delete;

    // The font nearest to the style that has `c`, or null. Borrowed.
    CPDFTextFont* font_for(char32_t c, const FONT_STYLE& style);

    // The object that the font is or will be, for resource dictionaries; number 0 when the font is none of these.
    PDF_REF object_of(const CPDFTextFont& font, CPDFXRefTable& xref);

    // Writes the fonts that object_of named and that have codes in use which are not written yet, to be called when
    // content streams are done and before the document is saved. A font that is written again keeps its object. False,
    // with the document as it was, when a font can't be cut down to its part or memory runs out.
    bool embed(CPDFXRefTable& xref);

    // One sentence why the program has no such fonts; empty while nothing is known to be wrong.
    static std::string problem();

private:
    struct FONT;

    [[maybe_unused]] CPDFMachineFonts& m_machine;  // borrowed
    std::vector<std::unique_ptr<FONT>> m_fonts;
};
