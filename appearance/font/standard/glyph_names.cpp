#include "appearance/font/standard/glyph_names.h"

#include <algorithm>

#include "appearance/font/standard/standard_glyphs.h"

namespace {

struct NAMED_CHARACTER {
    char name[21];
    uint16_t character;
};

// Names beyond the Latin glyphs of the standard fonts, sorted.
// clang-format off
constexpr NAMED_CHARACTER NAMES[] = {
    {"AEacute", 0x01FC}, {"Alpha", 0x0391}, {"Alphatonos", 0x0386}, {"Aringacute", 0x01FA}, {"Beta", 0x0392},
    {"Ccircumflex", 0x0108}, {"Cdotaccent", 0x010A}, {"Chi", 0x03A7}, {"Ebreve", 0x0114}, {"Eng", 0x014A}, {"Epsilon", 0x0395},
    {"Epsilontonos", 0x0388}, {"Eta", 0x0397}, {"Etatonos", 0x0389}, {"Gamma", 0x0393}, {"Gcaron", 0x01E6},
    {"Gcircumflex", 0x011C}, {"Gdotaccent", 0x0120}, {"Hbar", 0x0126}, {"Hcircumflex", 0x0124}, {"IJ", 0x0132},
    {"Ibreve", 0x012C}, {"Ifraktur", 0x2111}, {"Iota", 0x0399}, {"Iotadieresis", 0x03AA}, {"Iotatonos", 0x038A},
    {"Itilde", 0x0128}, {"Jcircumflex", 0x0134}, {"Kappa", 0x039A}, {"Lambda", 0x039B}, {"Ldot", 0x013F}, {"Mu", 0x039C},
    {"Nu", 0x039D}, {"Obreve", 0x014E}, {"Ohorn", 0x01A0}, {"Omega", 0x2126}, {"Omegatonos", 0x038F}, {"Omicron", 0x039F},
    {"Omicrontonos", 0x038C}, {"Oslashacute", 0x01FE}, {"Phi", 0x03A6}, {"Pi", 0x03A0}, {"Psi", 0x03A8}, {"Rfraktur", 0x211C},
    {"Rho", 0x03A1}, {"Scircumflex", 0x015C}, {"Sigma", 0x03A3}, {"Tau", 0x03A4}, {"Tbar", 0x0166}, {"Theta", 0x0398},
    {"Ubreve", 0x016C}, {"Uhorn", 0x01AF}, {"Upsilon", 0x03A5}, {"Upsilon1", 0x03D2}, {"Upsilondieresis", 0x03AB},
    {"Upsilontonos", 0x038E}, {"Utilde", 0x0168}, {"Wacute", 0x1E82}, {"Wcircumflex", 0x0174}, {"Wdieresis", 0x1E84},
    {"Wgrave", 0x1E80}, {"Xi", 0x039E}, {"Ycircumflex", 0x0176}, {"Ygrave", 0x1EF2}, {"Zeta", 0x0396}, {"acutecomb", 0x0301},
    {"aeacute", 0x01FD}, {"aleph", 0x2135}, {"alpha", 0x03B1}, {"alphatonos", 0x03AC}, {"angle", 0x2220}, {"angleleft", 0x2329},
    {"angleright", 0x232A}, {"anoteleia", 0x0387}, {"approxequal", 0x2248}, {"aringacute", 0x01FB}, {"arrowboth", 0x2194},
    {"arrowdblboth", 0x21D4}, {"arrowdbldown", 0x21D3}, {"arrowdblleft", 0x21D0}, {"arrowdblright", 0x21D2},
    {"arrowdblup", 0x21D1}, {"arrowdown", 0x2193}, {"arrowleft", 0x2190}, {"arrowright", 0x2192}, {"arrowup", 0x2191},
    {"arrowupdn", 0x2195}, {"arrowupdnbse", 0x21A8}, {"asteriskmath", 0x2217}, {"beta", 0x03B2}, {"block", 0x2588},
    {"carriagereturn", 0x21B5}, {"ccircumflex", 0x0109}, {"cdotaccent", 0x010B}, {"chi", 0x03C7}, {"circle", 0x25CB},
    {"circlemultiply", 0x2297}, {"circleplus", 0x2295}, {"club", 0x2663}, {"colonmonetary", 0x20A1}, {"congruent", 0x2245},
    {"copyrightsans", 0x00A9}, {"copyrightserif", 0x00A9}, {"delta", 0x03B4}, {"diamond", 0x2666}, {"dieresistonos", 0x0385},
    {"dkshade", 0x2593}, {"dnblock", 0x2584}, {"dong", 0x20AB}, {"dotbelowcomb", 0x0323}, {"dotlessj", 0xF6BE},
    {"dotmath", 0x22C5}, {"ebreve", 0x0115}, {"eightsuperior", 0x2078}, {"element", 0x2208}, {"emptyset", 0x2205},
    {"eng", 0x014B}, {"epsilon", 0x03B5}, {"epsilontonos", 0x03AD}, {"equivalence", 0x2261}, {"estimated", 0x212E},
    {"eta", 0x03B7}, {"etatonos", 0x03AE}, {"exclamdbl", 0x203C}, {"existential", 0x2203}, {"female", 0x2640}, {"ff", 0xFB00},
    {"ffi", 0xFB03}, {"ffl", 0xFB04}, {"figuredash", 0x2012}, {"filledbox", 0x25A0}, {"filledrect", 0x25AC},
    {"fiveeighths", 0x215D}, {"fivesuperior", 0x2075}, {"foursuperior", 0x2074}, {"franc", 0x20A3}, {"gamma", 0x03B3},
    {"gcaron", 0x01E7}, {"gcircumflex", 0x011D}, {"gdotaccent", 0x0121}, {"gradient", 0x2207}, {"gravecomb", 0x0300},
    {"hbar", 0x0127}, {"hcircumflex", 0x0125}, {"heart", 0x2665}, {"hookabovecomb", 0x0309}, {"house", 0x2302},
    {"hyphentwo", 0x2010}, {"ibreve", 0x012D}, {"ij", 0x0133}, {"infinity", 0x221E}, {"integral", 0x222B},
    {"integralbt", 0x2321}, {"integraltp", 0x2320}, {"intersection", 0x2229}, {"invbullet", 0x25D8}, {"invcircle", 0x25D9},
    {"invsmileface", 0x263B}, {"iota", 0x03B9}, {"iotadieresis", 0x03CA}, {"iotadieresistonos", 0x0390}, {"iotatonos", 0x03AF},
    {"itilde", 0x0129}, {"jcircumflex", 0x0135}, {"kappa", 0x03BA}, {"kgreenlandic", 0x0138}, {"lambda", 0x03BB},
    {"ldot", 0x0140}, {"lfblock", 0x258C}, {"lira", 0x20A4}, {"logicaland", 0x2227}, {"logicalor", 0x2228}, {"longs", 0x017F},
    {"ltshade", 0x2591}, {"male", 0x2642}, {"minute", 0x2032}, {"musicalnote", 0x266A}, {"musicalnotedbl", 0x266B},
    {"napostrophe", 0x0149}, {"nbspace", 0x00A0}, {"ninesuperior", 0x2079}, {"nonbreakingspace", 0x00A0},
    {"notelement", 0x2209}, {"notsubset", 0x2284}, {"nsuperior", 0x207F}, {"nu", 0x03BD}, {"obreve", 0x014F}, {"ohorn", 0x01A1},
    {"omega", 0x03C9}, {"omega1", 0x03D6}, {"omegatonos", 0x03CE}, {"omicron", 0x03BF}, {"omicrontonos", 0x03CC},
    {"onedotenleader", 0x2024}, {"oneeighth", 0x215B}, {"onethird", 0x2153}, {"openbullet", 0x25E6}, {"orthogonal", 0x221F},
    {"oslashacute", 0x01FF}, {"perpendicular", 0x22A5}, {"peseta", 0x20A7}, {"phi", 0x03C6}, {"phi1", 0x03D5}, {"pi", 0x03C0},
    {"prescription", 0x211E}, {"product", 0x220F}, {"propersubset", 0x2282}, {"propersuperset", 0x2283},
    {"proportional", 0x221D}, {"psi", 0x03C8}, {"quotereversed", 0x201B}, {"reflexsubset", 0x2286}, {"reflexsuperset", 0x2287},
    {"registersans", 0x00AE}, {"registerserif", 0x00AE}, {"revlogicalnot", 0x2310}, {"rho", 0x03C1}, {"rtblock", 0x2590},
    {"scircumflex", 0x015D}, {"second", 0x2033}, {"seveneighths", 0x215E}, {"sevensuperior", 0x2077}, {"sfthyphen", 0x00AD},
    {"shade", 0x2592}, {"sigma", 0x03C3}, {"sigma1", 0x03C2}, {"similar", 0x223C}, {"sixsuperior", 0x2076},
    {"smileface", 0x263A}, {"softhyphen", 0x00AD}, {"spade", 0x2660}, {"suchthat", 0x220B}, {"sun", 0x263C}, {"tau", 0x03C4},
    {"tbar", 0x0167}, {"therefore", 0x2234}, {"theta", 0x03B8}, {"theta1", 0x03D1}, {"threeeighths", 0x215C},
    {"tildecomb", 0x0303}, {"tonos", 0x0384}, {"trademarksans", 0x2122}, {"trademarkserif", 0x2122}, {"triagdn", 0x25BC},
    {"triaglf", 0x25C4}, {"triagrt", 0x25BA}, {"triagup", 0x25B2}, {"twodotenleader", 0x2025}, {"twothirds", 0x2154},
    {"ubreve", 0x016D}, {"uhorn", 0x01B0}, {"underscoredbl", 0x2017}, {"union", 0x222A}, {"universal", 0x2200},
    {"upblock", 0x2580}, {"upsilon", 0x03C5}, {"upsilondieresis", 0x03CB}, {"upsilondieresistonos", 0x03B0},
    {"upsilontonos", 0x03CD}, {"utilde", 0x0169}, {"wacute", 0x1E83}, {"wcircumflex", 0x0175}, {"wdieresis", 0x1E85},
    {"weierstrass", 0x2118}, {"wgrave", 0x1E81}, {"xi", 0x03BE}, {"ycircumflex", 0x0177}, {"ygrave", 0x1EF3},
    {"zerosuperior", 0x2070}, {"zeta", 0x03B6},
};
// clang-format on

// Runs of Cyrillic and Hebrew names, "afii" and a number; within a run characters follow one another as the numbers do.
struct AFII_RUN {
    uint32_t first;
    uint32_t last;
    uint16_t character;
};
constexpr AFII_RUN AFII[] = {
    {208, 208, 0x2015},     {299, 300, 0x200E},     {301, 301, 0x200D},     {8941, 8941, 0x20A4},
    {10017, 10022, 0x0410}, {10023, 10023, 0x0401}, {10024, 10049, 0x0416}, {10050, 10050, 0x0490},
    {10051, 10061, 0x0402}, {10062, 10062, 0x040E}, {10065, 10070, 0x0430}, {10071, 10071, 0x0451},
    {10072, 10097, 0x0436}, {10098, 10098, 0x0491}, {10099, 10109, 0x0452}, {10110, 10110, 0x045E},
    {10145, 10145, 0x040F}, {10146, 10146, 0x0462}, {10147, 10147, 0x0472}, {10148, 10148, 0x0474},
    {10193, 10193, 0x045F}, {10194, 10194, 0x0463}, {10195, 10195, 0x0473}, {10196, 10196, 0x0475},
    {10846, 10846, 0x04D9}, {57636, 57636, 0x20AA}, {57645, 57645, 0x05BE}, {57658, 57658, 0x05C3},
    {57664, 57690, 0x05D0}, {57716, 57718, 0x05F0}, {57793, 57795, 0x05B4}, {57796, 57796, 0x05BB},
    {57797, 57797, 0x05B8}, {57798, 57798, 0x05B7}, {57799, 57799, 0x05B0}, {57800, 57800, 0x05B2},
    {57801, 57801, 0x05B1}, {57802, 57802, 0x05B3}, {57803, 57803, 0x05C2}, {57804, 57804, 0x05C1},
    {57806, 57806, 0x05B9}, {57807, 57807, 0x05BC}, {57839, 57839, 0x05BD}, {57841, 57842, 0x05BF},
    {57929, 57929, 0x02BC}, {61248, 61248, 0x2105}, {61289, 61289, 0x2113}, {61352, 61352, 0x2116},
    {61573, 61575, 0x202C}, {61664, 61664, 0x200C}, {64937, 64937, 0x02BD},
};

// The value of `digits`, `least` to `most` upper-case hexadecimal ones; 0 for anything else.
char32_t hex_character(std::string_view digits, size_t least, size_t most)
{
    if (digits.size() < least || digits.size() > most)
        return 0;
    char32_t value = 0;
    for (const char c : digits) {
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F')))
            return 0;
        value = value << 4 | static_cast<char32_t>(c <= '9' ? c - '0' : c - 'A' + 10);
    }
    return value > 0x10FFFF || (value >= 0xD800 && value < 0xE000) ? 0 : value;
}

char32_t afii_character(std::string_view digits)
{
    uint32_t number = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9' || digits.size() > 5)
            return 0;
        number = number * 10 + static_cast<uint32_t>(c - '0');
    }
    for (const AFII_RUN& run : AFII) {
        if (number >= run.first && number <= run.last)
            return run.character + (number - run.first);
    }
    return 0;
}

char32_t listed_character(std::string_view name)
{
    const auto* found = std::lower_bound(std::begin(NAMES), std::end(NAMES), name,
                                         [](const NAMED_CHARACTER& row, std::string_view n) { return row.name < n; });
    return found != std::end(NAMES) && found->name == name ? found->character : 0;
}

char32_t dingbat_character(std::string_view name)
{
    const CODED_GLYPH* glyph = find_coded_glyph(dingbats_glyphs(), name);
    return glyph ? glyph->character : 0;
}

}  // namespace

char32_t character_of_glyph(std::string_view name)
{
    name = name.substr(0, name.find('.', 1));  // "a.alt" is another shape of "a"
    if (const LATIN_GLYPH* glyph = find_latin_glyph(name))
        return glyph->character;
    if (const char32_t listed = listed_character(name))
        return listed;
    if (name.starts_with("afii"))
        return afii_character(name.substr(4));
    if (name.starts_with("uni"))
        return hex_character(name.substr(3), 4, 4);
    if (name.starts_with('u'))
        return hex_character(name.substr(1), 4, 6);
    return name.starts_with('a') ? dingbat_character(name) : 0;
}
