#include "appearance/font/fallback/fallback_fonts.h"

#include "appearance/font/fallback/fallback_font.h"
#include "appearance/font/fallback/font_writer.h"
#include "appearance/font/fallback/machine_fonts.h"
#include "core/xref_table.h"

namespace {

CPDFMachineFonts& machine_fonts()
{
    static CPDFMachineFonts fonts;
    return fonts;
}

}  // namespace

struct CPDFFallbackFonts::FONT {
    explicit FONT(const CPDFFontFile& file) : font(file) {}

    CPDFFallbackFont font;
    FONT_OBJECTS objects;
    bool written = false;
};

CPDFFallbackFonts::CPDFFallbackFonts() : CPDFFallbackFonts(machine_fonts()) {}

CPDFFallbackFonts::CPDFFallbackFonts(CPDFMachineFonts& machine) : m_machine(machine) {}

CPDFFallbackFonts::~CPDFFallbackFonts() = default;

CPDFTextFont* CPDFFallbackFonts::font_for(char32_t c, const FONT_STYLE& style)
{
    const CPDFFontFile* file = m_machine.find(c, style);
    if (!file)
        return nullptr;
    for (const auto& entry : m_fonts) {
        if (&entry->font.file() == file)
            return &entry->font;
    }
    m_fonts.push_back(std::make_unique<FONT>(*file));
    return &m_fonts.back()->font;
}

PDF_REF CPDFFallbackFonts::object_of(const CPDFTextFont& font, CPDFXRefTable& xref)
{
    for (const auto& entry : m_fonts) {
        if (&entry->font != &font)
            continue;
        if (!entry->objects.font.num)
            entry->objects.font.num = xref.new_obj_num();
        return entry->objects.font;
    }
    return {0, 0};
}

bool CPDFFallbackFonts::embed(CPDFXRefTable& xref)
{
    for (const auto& entry : m_fonts) {
        if (!entry->objects.font.num || (entry->written && !entry->font.has_news()))
            continue;
        if (!write_font(xref, entry->font, entry->objects))
            return false;
        entry->font.written();
        entry->written = true;
    }
    return true;
}

std::string CPDFFallbackFonts::problem()
{
    return machine_fonts().problem();
}
