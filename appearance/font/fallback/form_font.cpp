#include "appearance/font/fallback/form_font.h"

#include <ft2build.h>

#include FT_FREETYPE_H

#include <cmath>
#include <map>

#include "appearance/font/fallback/font_subset.h"
#include "appearance/font/free_type.h"
#include "appearance/font/standard/standard_glyphs.h"

namespace {

// The name that the font goes by; empty where it is no font.
std::string name_of(const std::string& path)
{
    const FREE_TYPE library = open_free_type();
    FT_Face face = nullptr;
    if (!library || FT_New_Face(library.get(), path.c_str(), 0, &face))
        return "";
    const char* name = FT_Get_Postscript_Name(face);
    return name ? name : "Font";
}

// Loaded once for the program.
const HARFBUZZ* harfbuzz(std::string& problem)
{
    static HARFBUZZ library;
    static std::string wrong;
    static const bool loaded = load_harfbuzz(library, wrong);
    problem = wrong;
    return loaded ? &library : nullptr;
}

std::map<int, char32_t> encoded_characters()
{
    std::map<int, char32_t> characters;
    for (const LATIN_GLYPH& glyph : latin_glyphs()) {
        if (const int code = glyph.codes[LATIN_WIN_ANSI]; code >= FORM_FONT_FIRST)
            characters[code] = glyph.character;
    }
    return characters;
}

}  // namespace

bool read_form_font(const std::string& path, FORM_FONT& out, std::string& problem)
{
    out = {};
    out.name = name_of(path);
    const HARFBUZZ* hb = harfbuzz(problem);
    if (!hb || out.name.empty()) {
        problem = hb ? "it is no font" : problem;
        return false;
    }
    const std::unique_ptr<CPDFFontFile> file = CPDFFontFile::open(*hb, path, 0, out.name);
    if (!file || file->has_cids()) {
        problem = file ? "its glyphs have no names, but the numbers of a character collection"
                       : "its maker does not allow it to be embedded, or it has no outlines";
        return false;
    }
    out.is_cff = file->is_cff();
    std::u32string characters;
    out.widths.resize(FORM_FONT_LAST - FORM_FONT_FIRST + 1);
    for (const auto& [code, character] : encoded_characters()) {
        const uint32_t glyph = file->glyph_of(character);
        if (!glyph)
            continue;
        characters += character;
        out.widths[static_cast<size_t>(code - FORM_FONT_FIRST)] =
            static_cast<int>(std::lround(file->width(glyph) * 1000));
    }
    out.metrics = file->metrics();
    if (make_character_subset(out.program, *file, characters))
        return true;
    problem = "it can't be cut down";
    return false;
}
