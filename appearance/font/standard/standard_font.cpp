#include "appearance/font/standard/standard_font.h"

#include <iterator>

namespace {

constexpr int COURIER_WIDTH = 600;

// The height of a line is that of "FontBBox"; below the baseline there is the descender of the letters, as the forms of the
// most common form designer have it.
struct FONT_ROW {
    const char* name;
    const char* resource;  // its usual name in "DR"
    LATIN_COLUMN column;
    STANDARD_BOX box;
};
constexpr FONT_ROW FONTS[] = {
    {"Helvetica", "Helv", COLUMN_HELVETICA, {949, 207}},
    {"Helvetica-Bold", "HeBo", COLUMN_HELVETICA_BOLD, {983, 207}},
    {"Helvetica-Oblique", "HeOb", COLUMN_HELVETICA, {949, 207}},
    {"Helvetica-BoldOblique", "HeBO", COLUMN_HELVETICA_BOLD, {983, 207}},
    {"Times-Roman", "TiRo", COLUMN_TIMES, {899, 217}},
    {"Times-Bold", "TiBo", COLUMN_TIMES_BOLD, {936, 217}},
    {"Times-Italic", "TiIt", COLUMN_TIMES_ITALIC, {883, 217}},
    {"Times-BoldItalic", "TiBI", COLUMN_TIMES_BOLD_ITALIC, {922, 217}},
    {"Courier", "Cour", LATIN_COLUMNS, {898, 157}},
    {"Courier-Bold", "CoBo", LATIN_COLUMNS, {894, 157}},
    {"Courier-Oblique", "CoOb", LATIN_COLUMNS, {898, 157}},
    {"Courier-BoldOblique", "CoBO", LATIN_COLUMNS, {894, 157}},
    {"Symbol", "Symb", LATIN_COLUMNS, {1010, 293}},
    {"ZapfDingbats", "ZaDb", LATIN_COLUMNS, {820, 143}},
};
static_assert(std::size(FONTS) == static_cast<size_t>(STANDARD_FONT::ZAPF_DINGBATS) + 1);

// Longer names before what they begin with.
struct FAMILY {
    std::string_view name;
    STANDARD_FONT upright;
};
constexpr FAMILY FAMILIES[] = {
    {"Helvetica", STANDARD_FONT::HELVETICA}, {"Arial", STANDARD_FONT::HELVETICA},
    {"TimesNewRoman", STANDARD_FONT::TIMES}, {"Times", STANDARD_FONT::TIMES},
    {"CourierNew", STANDARD_FONT::COURIER},  {"CourierStd", STANDARD_FONT::COURIER},
    {"Courier", STANDARD_FONT::COURIER},     {"SymbolMT", STANDARD_FONT::SYMBOL},
    {"Symbol", STANDARD_FONT::SYMBOL},       {"ZapfDingbats", STANDARD_FONT::ZAPF_DINGBATS},
};

// What a style is made of. Bold and slanted variants stand beside the upright font in the order of the fonts.
struct STYLE_WORD {
    std::string_view word;
    unsigned variant;
};
constexpr STYLE_WORD STYLE_WORDS[] = {{"Bold", 1},    {"Italic", 2}, {"Oblique", 2}, {"Roman", 0},
                                      {"Regular", 0}, {"PSMT", 0},   {"PS", 0},      {"MT", 0},
                                      {"-", 0},       {",", 0},      {" ", 0}};

const FONT_ROW& row_of(STANDARD_FONT font)
{
    return FONTS[static_cast<size_t>(font)];
}

// The variant that a style spells, or nothing for a word that makes it another font ("Narrow").
std::optional<unsigned> variant_of(std::string_view style)
{
    unsigned variant = 0;
    while (!style.empty()) {
        const STYLE_WORD* found = nullptr;
        for (const STYLE_WORD& word : STYLE_WORDS) {
            if (!found && style.starts_with(word.word))
                found = &word;
        }
        if (!found)
            return std::nullopt;
        variant |= found->variant;
        style.remove_prefix(found->word.size());
    }
    return variant;
}

// The name without the tag of a subset, and in one word where the family is spelled in several.
std::string plain_name(std::string_view name)
{
    constexpr size_t TAG = 6;
    if (name.size() > TAG && name[TAG] == '+')
        name.remove_prefix(TAG + 1);
    std::string plain;
    for (const char c : name) {
        if (c != ' ')
            plain += c;
    }
    return plain;
}

}  // namespace

std::optional<STANDARD_FONT> find_standard_font(std::string_view name)
{
    for (size_t i = 0; i < std::size(FONTS); ++i) {
        if (name == FONTS[i].name || name == FONTS[i].resource)
            return static_cast<STANDARD_FONT>(i);
    }
    const std::string plain = plain_name(name);
    for (const FAMILY& family : FAMILIES) {
        if (!plain.starts_with(family.name))
            continue;
        const std::optional<unsigned> variant = variant_of(std::string_view(plain).substr(family.name.size()));
        if (!variant)
            return std::nullopt;
        return is_symbolic(family.upright)
                   ? family.upright
                   : static_cast<STANDARD_FONT>(static_cast<unsigned>(family.upright) + *variant);
    }
    return std::nullopt;
}

const char* standard_font_name(STANDARD_FONT font)
{
    return row_of(font).name;
}

const char* standard_font_resource(STANDARD_FONT font)
{
    return row_of(font).resource;
}

STANDARD_BOX standard_box(STANDARD_FONT font)
{
    return row_of(font).box;
}

bool is_symbolic(STANDARD_FONT font)
{
    return font == STANDARD_FONT::SYMBOL || font == STANDARD_FONT::ZAPF_DINGBATS;
}

int standard_width(STANDARD_FONT font, std::string_view glyph)
{
    if (is_symbolic(font)) {
        const CODED_GLYPH* coded =
            find_coded_glyph(font == STANDARD_FONT::SYMBOL ? symbol_glyphs() : dingbats_glyphs(), glyph);
        return coded ? coded->width : 0;
    }
    const LATIN_GLYPH* latin = find_latin_glyph(glyph);
    if (!latin)
        return 0;
    const LATIN_COLUMN column = row_of(font).column;
    return column == LATIN_COLUMNS ? COURIER_WIDTH : latin->widths[column];
}

void name_own_glyphs(STANDARD_FONT font, GLYPH_NAMES& names)
{
    if (!is_symbolic(font))
        return name_latin_glyphs(LATIN_STANDARD, names);
    for (const CODED_GLYPH& glyph : font == STANDARD_FONT::SYMBOL ? symbol_glyphs() : dingbats_glyphs())
        names[glyph.code] = glyph.name;
}
