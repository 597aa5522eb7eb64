#include "appearance/font/fallback/machine_fonts.h"

#include "core/library_calls.h"

namespace {

bool is_true(FcPattern* font, const char* key)
{
    FcBool value = FcFalse;
    return FcPatternGetBool(font, key, 0, &value) == FcResultMatch && value == FcTrue;
}

std::string text_of(FcPattern* font, const char* key)
{
    FcChar8* text = nullptr;
    return FcPatternGetString(font, key, 0, &text) == FcResultMatch ? reinterpret_cast<const char*>(text) : "";
}

// Pictures of glyphs, in colour or not, have no place in a font of a PDF file.
bool is_outline(FcPattern* font)
{
    const std::string format = text_of(font, FC_FONTFORMAT);
    return is_true(font, FC_OUTLINE) && !is_true(font, FC_COLOR) && (format == "TrueType" || format == "CFF");
}

// The fonts among `fonts` by how near they are to the style. The caller owns them; null when memory runs out.
FcFontSet* sorted_fonts(FcConfig* config, FcFontSet* fonts, const FONT_STYLE& style)
{
    FcPattern* pattern = FcPatternCreate();
    if (!pattern)
        return nullptr;
    const char* family = style.mono ? "monospace" : style.serif ? "serif" : "sans-serif";
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddInteger(pattern, FC_WEIGHT, style.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, style.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(config, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcFontSet* sorted = FcFontSetSort(config, &fonts, 1, pattern, FcTrue, nullptr, &result);
    FcPatternDestroy(pattern);
    return sorted;
}

unsigned key_of(const FONT_STYLE& style)
{
    return unsigned{style.serif} | unsigned{style.mono} << 1 | unsigned{style.bold} << 2 | unsigned{style.italic} << 3;
}

}  // namespace

CPDFMachineFonts::CPDFMachineFonts(const char* shaping, const char* subsets) : m_shaping(shaping), m_subsets(subsets) {}

CPDFMachineFonts::~CPDFMachineFonts()
{
    for (auto& [key, choice] : m_choices) {
        if (choice.fonts)
            FcFontSetSortDestroy(choice.fonts);
    }
    unload();
}

void CPDFMachineFonts::unload()
{
    if (m_outlines)
        FcFontSetDestroy(m_outlines);
    if (m_config)
        FcConfigDestroy(m_config);
    m_outlines = nullptr;
    m_config = nullptr;
}

const CPDFFontFile* CPDFMachineFonts::find(char32_t c, const FONT_STYLE& style)
{
    const std::lock_guard lock(m_mutex);
    if (!m_loaded)
        load();
    if (!m_outlines)
        return nullptr;
    CHOICE& choice = choice_of(style);
    if (const auto known = choice.known.find(c); known != choice.known.end())
        return known->second;
    const VXFailureCheck memory;
    const CPDFFontFile* file = search(choice, c);
    if (!memory.failed())
        choice.known.emplace(c, file);
    return file;
}

std::string CPDFMachineFonts::problem()
{
    const std::lock_guard lock(m_mutex);
    return m_problem;
}

void CPDFMachineFonts::load()
{
    const VXFailureCheck memory;
    unload();  // what was loaded when memory ran out
    m_problem.clear();
    {
        const VXLibraryCalls calls;
        if (load_harfbuzz(m_hb, m_problem, m_shaping, m_subsets))
            m_config = FcInitLoadConfigAndFonts();
        if (m_config)
            choose_outlines();
    }
    if (m_problem.empty() && (!m_outlines || m_outlines->nfont == 0))
        m_problem = "This system has no fonts that could stand in for missing characters.";
    m_loaded = !memory.failed();
}

void CPDFMachineFonts::choose_outlines()
{
    m_outlines = FcFontSetCreate();
    if (!m_outlines)
        return vx_note_failure();
    const FcFontSet* all = FcConfigGetFonts(m_config, FcSetSystem);
    for (int i = 0; all && i < all->nfont; ++i) {
        if (!is_outline(all->fonts[i]))
            continue;
        FcPatternReference(all->fonts[i]);
        if (FcFontSetAdd(m_outlines, all->fonts[i]))
            continue;
        FcPatternDestroy(all->fonts[i]);
        vx_note_failure();
    }
}

CPDFMachineFonts::CHOICE& CPDFMachineFonts::choice_of(const FONT_STYLE& style)
{
    CHOICE& choice = m_choices[key_of(style)];
    if (!choice.fonts) {
        const VXLibraryCalls calls;
        choice.fonts = sorted_fonts(m_config, m_outlines, style);
        if (!choice.fonts)
            vx_note_failure();
    }
    return choice;
}

const CPDFFontFile* CPDFMachineFonts::search(const CHOICE& choice, char32_t c)
{
    for (int i = 0; choice.fonts && i < choice.fonts->nfont; ++i) {
        FcCharSet* characters = nullptr;
        if (FcPatternGetCharSet(choice.fonts->fonts[i], FC_CHARSET, 0, &characters) != FcResultMatch ||
            !FcCharSetHasChar(characters, c))
            continue;
        const CPDFFontFile* file = file_of(choice.fonts->fonts[i]);
        if (file && file->glyph_of(c) != 0)
            return file;
    }
    return nullptr;
}

std::unique_ptr<CPDFFontFile> CPDFMachineFonts::open_file(const std::string& path, int index, std::string name)
{
    const VXLibraryCalls calls;
    return CPDFFontFile::open(m_hb, path, index, std::move(name));
}

const CPDFFontFile* CPDFMachineFonts::file_of(FcPattern* font)
{
    int index = 0;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    index &= 0xFFFF;  // above that is an instance of a variable font
    const std::pair key(text_of(font, FC_FILE), index);
    if (const auto known = m_files.find(key); known != m_files.end())
        return known->second.get();
    const VXFailureCheck memory;
    std::unique_ptr<CPDFFontFile> file = open_file(key.first, index, text_of(font, FC_POSTSCRIPT_NAME));
    return memory.failed() ? nullptr : m_files.emplace(key, std::move(file)).first->second.get();
}
