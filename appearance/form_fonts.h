// The fonts that appearances of one form are set with.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "appearance/font/fallback/fallback_fonts.h"
#include "appearance/font/standard/standard_font.h"
#include "appearance/font/text_font.h"
#include "core/object.h"

class CPDFDictionary;
class CPDFXRefTable;

// Loads each font of the form once, and finds another for characters that it lacks: a standard font of its style, which needs
// no program in the file, then a font of this machine, which is embedded. Everything handed out is borrowed and ends with
// it.
class CPDFFormFonts {
public:
    // The store outlives this.
    explicit CPDFFormFonts(CPDFXRefTable& xref);
    ~CPDFFormFonts();
    CPDFFormFonts(const CPDFFormFonts&) = delete;
    CPDFFormFonts& operator=(const CPDFFormFonts&) = delete;

    // The fonts for text whose default appearance names `name`: that of the form's default resources `defaults`, else of
    // `shown`, the resources of the appearance that is there so far, else the standard font that goes by such a name, else
    // Helvetica. Both may be null; they are only looked at in this call.
    CPDFFontChoice& choice(const std::string& name, const CPDFDictionary* defaults, const CPDFDictionary* shown);

    // The object of a font that a choice gave, for resource dictionaries, made when there is none yet. Object number 0 when
    // memory runs out.
    PDF_REF object_of(const CPDFTextFont& font);

    // Writes what the document is to hold of this machine's fonts; to be called before it is saved. False when a font
    // can't be embedded or memory runs out.
    bool embed();

    // To be called when all changes of the document were dropped: objects that were made are gone.
    void changes_dropped();

    // One sentence why this machine's fonts can't be used; empty while nothing is known to be wrong.
    static std::string problem();

private:
    struct FONT;
    class Choice;
    friend class Choice;

    FONT& standard(STANDARD_FONT font);
    std::unique_ptr<FONT> load(const std::string& name, const CPDFDictionary* defaults, const CPDFDictionary* shown);
    CPDFTextFont* machine_font(char32_t c, const FONT_STYLE& style);

    CPDFXRefTable& m_xref;  // borrowed from the document
    std::unordered_map<std::string, std::unique_ptr<Choice>> m_choices;
    std::unordered_map<const CPDFTextFont*, FONT*> m_fonts;  // borrowed from the choices and m_standard
    std::unique_ptr<FONT> m_standard[14];
    std::unique_ptr<CPDFFallbackFonts> m_machine;
};
