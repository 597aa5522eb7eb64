#include "appearance/font/fallback/machine_fonts.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr uint32_t FLAG_FIXED_PITCH = 1u << 0;
constexpr uint32_t FLAG_SERIF = 1u << 1;
constexpr uint32_t FLAG_ITALIC = 1u << 6;
constexpr uint32_t FLAG_FORCE_BOLD = 1u << 18;

bool has_any(const std::string& name, std::initializer_list<const char*> words)
{
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return name.find(word) != std::string::npos; });
}

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

// What fontconfig is asked for. The caller owns it.
FcPattern* pattern_of(FcConfig* config, const FONT_STYLE& style)
{
    FcPattern* pattern = FcPatternCreate();
    const char* family = style.mono ? "monospace" : style.serif ? "serif" : "sans-serif";
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcPatternAddInteger(pattern, FC_WEIGHT, style.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, style.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(config, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    return pattern;
}

unsigned key_of(const FONT_STYLE& style)
{
    return unsigned{style.serif} | unsigned{style.mono} << 1 | unsigned{style.bold} << 2 | unsigned{style.italic} << 3;
}

}  // namespace

FONT_STYLE font_style(std::string_view base_font, uint32_t flags)
{
    std::string name(base_font);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    FONT_STYLE style;
    style.mono = flags & FLAG_FIXED_PITCH || has_any(name, {"cour", "mono", "typewriter"});
    style.serif =
        flags & FLAG_SERIF || (has_any(name, {"times", "tiro", "serif", "roman"}) && !has_any(name, {"sans"}));
    style.bold = flags & FLAG_FORCE_BOLD || has_any(name, {"bold", "black", "heavy"});
    style.italic = flags & FLAG_ITALIC || has_any(name, {"italic", "oblique"});
    return style;
}

CPDFMachineFonts::CPDFMachineFonts(const char* shaping, const char* subsets) : m_shaping(shaping), m_subsets(subsets) {}

CPDFMachineFonts::~CPDFMachineFonts()
{
    for (auto& [key, choice] : m_choices) {
        if (choice.fonts)
            FcFontSetSortDestroy(choice.fonts);
    }
    if (m_outlines)
        FcFontSetDestroy(m_outlines);
    if (m_config)
        FcConfigDestroy(m_config);
}

const CPDFFontFile* CPDFMachineFonts::find(char32_t c, const FONT_STYLE& style)
{
    const std::lock_guard lock(m_mutex);
    if (!m_loaded)
        load();
    if (!m_outlines)
        return nullptr;
    CHOICE& choice = choice_of(style);
    const auto [at, is_new] = choice.known.try_emplace(c, nullptr);
    if (is_new)
        at->second = search(choice, c);
    return at->second;
}

std::string CPDFMachineFonts::problem()
{
    const std::lock_guard lock(m_mutex);
    return m_problem;
}

void CPDFMachineFonts::load()
{
    m_loaded = true;
    if (!load_harfbuzz(m_hb, m_problem, m_shaping, m_subsets))
        return;
    m_config = FcInitLoadConfigAndFonts();
    if (m_config)
        choose_outlines();
    if (!m_outlines || m_outlines->nfont == 0)
        m_problem = "This system has no fonts that could stand in for missing characters.";
}

void CPDFMachineFonts::choose_outlines()
{
    m_outlines = FcFontSetCreate();
    const FcFontSet* all = FcConfigGetFonts(m_config, FcSetSystem);
    for (int i = 0; all && m_outlines && i < all->nfont; ++i) {
        if (!is_outline(all->fonts[i]))
            continue;
        FcPatternReference(all->fonts[i]);
        if (!FcFontSetAdd(m_outlines, all->fonts[i]))
            FcPatternDestroy(all->fonts[i]);
    }
}

CPDFMachineFonts::CHOICE& CPDFMachineFonts::choice_of(const FONT_STYLE& style)
{
    const auto [at, is_new] = m_choices.try_emplace(key_of(style));
    if (is_new) {
        FcPattern* pattern = pattern_of(m_config, style);
        FcResult result = FcResultNoMatch;
        at->second.fonts = FcFontSetSort(m_config, &m_outlines, 1, pattern, FcTrue, nullptr, &result);
        FcPatternDestroy(pattern);
    }
    return at->second;
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

const CPDFFontFile* CPDFMachineFonts::file_of(FcPattern* font)
{
    int index = 0;
    FcPatternGetInteger(font, FC_INDEX, 0, &index);
    index &= 0xFFFF;  // above that is an instance of a variable font
    const auto [at, is_new] = m_files.try_emplace({text_of(font, FC_FILE), index});
    if (is_new)
        at->second = CPDFFontFile::open(m_hb, at->first.first, index, text_of(font, FC_POSTSCRIPT_NAME));
    return at->second.get();
}
