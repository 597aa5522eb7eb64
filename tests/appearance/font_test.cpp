#include <algorithm>
#include <cmath>

#include "appearance/font/cmap.h"
#include "appearance/font/read_font.h"
#include "appearance/font/standard/glyph_names.h"
#include "core/text.h"
#include "tests/support/pdf_builder.h"

namespace {

std::u32string utf32(const std::string& utf8)
{
    std::u32string text;
    const auto* at = reinterpret_cast<const unsigned char*>(utf8.data());
    for (const auto* end = at + utf8.size(); at < end;)
        text += static_cast<char32_t>(ucs_from_utf8(at, end));
    return text;
}

// The codes that show the text, in hexadecimal, and the width in thousandths; "-" for a character that the font lacks.
std::string shown(CPDFTextFont& font, const std::string& utf8, bool right_to_left = false, bool ask = true)
{
    const std::u32string text = utf32(utf8);
    if (ask && std::any_of(text.begin(), text.end(), [&font](char32_t c) { return !font.has(c); }))
        return "-";
    std::vector<TEXT_GLYPH> glyphs;
    font.shape(text, 0, text.size(), right_to_left, glyphs);
    std::string codes;
    float width = 0;
    for (const TEXT_GLYPH& glyph : glyphs) {
        font.append_code(glyph.code, codes);
        width += glyph.advance;
    }
    std::string result;
    for (const char c : codes)
        result += {"0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4], "0123456789ABCDEF"[c & 15]};
    return result + " " + std::to_string(std::lround(width * 1000));
}

// Object 1 as a font.
std::unique_ptr<CPDFTextFont> font_of(MemoryDocument& doc)
{
    CPDFObj reference;
    reference.set_ref({1, 0});
    return read_font(doc.xref, reference);
}

std::string big_endian(std::initializer_list<int> shorts)
{
    std::string bytes;
    for (const int value : shorts)
        bytes += {static_cast<char>(value >> 8), static_cast<char>(value)};
    return bytes;
}

// A TrueType program with the glyphs 1 for A, 2 for B and 3 for a space. Only A has an outline.
std::string tiny_truetype()
{
    const std::string triangle =
        big_endian({1, 0, 0, 500, 500, 2, 0}) + "\1\1\1" + big_endian({0, 500, -250, 0, 0, 500}) + '\0';
    const std::pair<std::string, std::string> tables[] = {
        {"cmap", big_endian({0,    1,    3,      1, 0,    12,   4,      40,       0,        6, 4, 1, 2,
                             0x20, 0x42, 0xFFFF, 0, 0x20, 0x41, 0xFFFF, 3 - 0x20, 1 - 0x41, 1, 0, 0, 0})},
        {"glyf", triangle},
        {"head", big_endian({1, 0, 1, 0, 0, 0, 0x5F0F, 0x3CF5, 0, 1000, 0, 0, 0, 0,
                             0, 0, 0, 0, 0, 0, 500,    500,    0, 8,    2, 0, 0})},
        {"hhea", big_endian({1, 0, 800, -200, 0, 600, 0, 0, 500, 1, 0, 0, 0, 0, 0, 0, 0, 1})},
        {"hmtx", big_endian({600, 0, 0, 0, 0})},
        {"loca", big_endian({0, 0, static_cast<int>(triangle.size() / 2), static_cast<int>(triangle.size() / 2),
                             static_cast<int>(triangle.size() / 2)})},
        {"maxp", big_endian({1, 0, 4, 3, 1, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0})},
    };
    std::string file = big_endian({1, 0, static_cast<int>(std::size(tables)), 64, 2, 48});
    std::string data;
    for (const auto& [tag, bytes] : tables) {
        const size_t at = 12 + 16 * std::size(tables) + data.size();
        file += tag + big_endian({0, 0, 0, static_cast<int>(at), 0, static_cast<int>(bytes.size())});
        data += bytes + std::string((4 - bytes.size() % 4) % 4, '\0');
    }
    return file + data;
}

}  // namespace

TEST(StandardFontTest, WidthsAndCodes)
{
    const struct {
        const char *font, *text, *expected;
    } cases[] = {
        {"Helvetica", "A i", "412069 1167"},
        {"Helvetica", "–€Œ\u00A0\u00AD", "96808C202D 2723"},
        {"Helvetica-Oblique", "A", "41 667"},
        {"Arial,BoldItalic", "A", "41 722"},
        {"TimesNewRomanPS-BoldItalicMT", "A", "41 667"},
        {"ABCDEF+Times New Roman", "A", "41 722"},
        {"TiRo", "A", "41 722"},
        {"CourierNewPSMT", "iW", "6957 1200"},
        {"Symbol", "α∑", "61E5 1344"},
        {"Symbol", "a", "61 631"},
        {"ZapfDingbats", "✔✘", "3438 1523"},
        {"ZaDb", "4n", "346E 1607"},
        {"Helvetica", "Ł", "-"},
        {"Helvetica", "\u0301", "-"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.font) + " " + c.text);
        const std::optional<STANDARD_FONT> font = find_standard_font(c.font);
        ASSERT_TRUE(font);
        EXPECT_EQ(shown(*make_standard_font(*font), c.text), c.expected);
    }
    for (const char* other : {"", "ArialNarrow", "Arial-Black", "HelveticaNeue", "Times-Roman2", "helv"})
        EXPECT_FALSE(find_standard_font(other)) << other;
    EXPECT_NEAR(make_standard_font(STANDARD_FONT::HELVETICA)->box().ascent, 0.949, 1e-4);
}

TEST(StandardFontTest, GlyphNames)
{
    const std::pair<const char*, char32_t> cases[] = {
        {"A", 'A'},          {"afii10017", 0x410}, {"afii57690", 0x5EA}, {"uni20AC", 0x20AC}, {"u1F600", 0x1F600},
        {"eacute.sc", 0xE9}, {"a20", 0x2714},      {"Omega", 0x2126},    {"sigma1", 0x3C2},   {".notdef", 0},
        {"uniD800", 0},      {"uni00410042", 0},   {"g17", 0},           {"afii", 0},         {"", 0},
    };
    for (const auto& [name, character] : cases)
        EXPECT_EQ(character_of_glyph(name), character) << name;
}

TEST(SimpleFontTest, DictionariesOfEveryShape)
{
    const struct {
        const char *label, *font, *text, *expected;
    } cases[] = {
        {"own widths", "/BaseFont /X /Encoding /WinAnsiEncoding /FirstChar 65 /Widths [100 200.5]", "AB", "4142 301"},
        {"none beyond them", "/BaseFont /X /Encoding /WinAnsiEncoding /FirstChar 65 /Widths [100]", "B", "-"},
        {"missing width", "/BaseFont /X /FirstChar 66 /Widths [] /FontDescriptor 2 0 R", "A", "41 444"},
        {"no encoding: StandardEncoding", "/BaseFont /Helvetica", "’“", "27AA 555"},
        {"PDFDocEncoding may be ignored", "/BaseFont /Helvetica /Encoding /PDFDocEncoding", "a•", "-"},
        {"a difference without a width", "/BaseFont /Helvetica /Encoding << /Differences [1 /Lslash /uni0142] >>", "Łł",
         "01F8 778"},
        {"a difference that the font has not", "/BaseFont /Helvetica /Encoding << /Differences [1 /afii10017] >>", "А",
         "-"},
        {"a code taken away", "/BaseFont /Helvetica /Encoding << /Differences [65 /.notdef] >>", "A", "-"},
        {"codes out of range", "/BaseFont /Helvetica /Encoding << /Differences [-1 /a 256 /b (c) 2 0 R 66 /C] >>", "C",
         "42 722"},
        {"meaning by ToUnicode",
         "/BaseFont /X /Encoding << /Differences [7 /g7] >> /FirstChar 7 /Widths [500] /ToUnicode 3 0 R", "Ж",
         "07 500"},
        {"metrics by flags", "/BaseFont /Unknown /FontDescriptor 4 0 R", "i", "69 600"},
        {"wrong kinds", "/BaseFont (Helvetica) /Encoding [1] /Widths /W /FirstChar << >> /FontDescriptor 1 0 R", "A",
         "41 667"},
        {"a program that is none", "/BaseFont /Helvetica /FontDescriptor << /FontFile 3 0 R >>", "A", "41 667"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        MemoryDocument doc("/Subtype /Type1 " + std::string(c.font) + "; /MissingWidth 444; null; /Flags 1");
        doc.put_stream(3, "1 beginbfchar <07> <0416> endbfchar");
        const std::unique_ptr<CPDFTextFont> font = font_of(doc);
        ASSERT_TRUE(font);
        EXPECT_EQ(shown(*font, c.text), c.expected);
    }
}

TEST(SimpleFontTest, RightToLeftAndMissingCharacters)
{
    EXPECT_EQ(shown(*make_standard_font(STANDARD_FONT::COURIER), "a(b", true), "622961 1800");
    std::vector<TEXT_GLYPH> glyphs;
    make_standard_font(STANDARD_FONT::HELVETICA)->shape(U"a\u4E00b", 1, 2, false, glyphs);
    ASSERT_EQ(glyphs.size(), 1u);
    EXPECT_EQ(glyphs[0].code, uint32_t{'?'});
    EXPECT_EQ(glyphs[0].cluster, 1u);
}

TEST(SimpleFontTest, AnEmbeddedProgramShowsWhatItHas)
{
    const char* const entries[] = {
        "/Subtype /TrueType /Encoding /WinAnsiEncoding /FirstChar 32 /Widths 3 0 R /FontDescriptor << /FontFile2 2 0 R >>",
        "/Subtype /Type0 /Encoding /Identity-H /ToUnicode 4 0 R /DescendantFonts [<< /FontDescriptor << /FontFile2 2 0 R >> >>]",
    };
    for (const char* font_entries : entries) {
        SCOPED_TRACE(font_entries);
        const std::string program = tiny_truetype();
        MemoryDocument doc(std::string(font_entries) + "; null; [" + repeated("1000 ", 40) + "]");
        doc.put_stream(2, program);
        doc.put_stream(4, "beginbfrange <0001> <0002> <0041> <0003> <0003> <0020>");
        const auto font = font_of(doc);
        const bool is_simple = font_entries == entries[0];
        EXPECT_EQ(shown(*font, "A A"), is_simple ? "412041 3000" : "000100030001 3000");
        EXPECT_FALSE(font->has('B')) << "the outline was left out of the subset";
        EXPECT_FALSE(font->has('C'));
        for (size_t size = 0; size < program.size(); size += 7) {  // cut, and one byte of it wrong
            doc.put_stream(2, program.substr(0, size));
            EXPECT_FALSE(font_of(doc)->has('B') && !is_simple);
            std::string damaged = program;
            damaged[size] = static_cast<char>(~damaged[size]);
            doc.put_stream(2, damaged);
            static_cast<void>(font_of(doc)->has('A'));
        }
    }
}

TEST(CompositeFontTest, EncodingsWidthsAndMeanings)
{
    const struct {
        const char *label, *font, *cid_font, *text, *expected;
    } cases[] = {
        {"ToUnicode", "/Encoding /Identity-H /ToUnicode 4 0 R", "/W [1 [444] 3 3 555]", "Ж ", "00010003 999"},
        {"only what it tells", "/Encoding /Identity-H /ToUnicode 4 0 R", "", "A", "-"},
        {"usual width", "/Encoding /Identity-H", "/DW 321 /W [0 [1] 5 4 9 2 3]", "A", "0001 321"},
        {"numbers of glyphs", "/Encoding /Identity-H", "/CIDToGIDMap 6 0 R", "A", "0002 1000"},
        {"embedded CMap", "/Encoding 5 0 R", "/W [1 [444]]", "A", "41 444"},
        {"from top to bottom", "/Encoding /Identity-V /ToUnicode 4 0 R", "", "Ж", "-"},
        {"unknown CMap", "/Encoding /UniJIS-UTF16-H /ToUnicode 4 0 R", "", "Ж", "-"},
        {"not embedded", "/Encoding /Identity-H /ToUnicode 4 0 R", "/FontDescriptor 9 0 R", "Ж", "-"},
        {"wrong kinds", "/Encoding /Identity-H /ToUnicode [1]", "/W << >> /DW (1) /CIDToGIDMap 1", "A", "-"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        MemoryDocument doc("/Subtype /Type0 /DescendantFonts [3 0 R] " + std::string(c.font) +
                           "; null; /FontDescriptor << /FontFile2 2 0 R >> " + c.cid_font);
        doc.put_stream(2, tiny_truetype());
        doc.put_stream(4, "beginbfrange <0001> <0002> [<0416> <00410042>] <0003> <0003> <0020> endbfrange");
        doc.put_stream(5, "1 begincodespacerange <20> <7F> endcodespacerange 1 begincidrange <41> <42> 1 endcidrange");
        doc.put_stream(6, big_endian({0, 3, 1}));
        const bool told = std::string(c.font).find("ToUnicode") != std::string::npos;
        EXPECT_EQ(shown(*font_of(doc), c.text, false, told), c.expected);
        EXPECT_TRUE(told || !font_of(doc)->has('A')) << "text that can't be copied out";
    }
}

TEST(CMapTest, HostileOnesEnd)
{
    EXPECT_LE(read_cmap("beginbfrange <00000000> <FFFFFFFF> <0041>").characters.size(), LIMIT_FONT_CHARACTERS);
    for (const char* text :
         {"beginbfrange <", "beginbfchar <00", "beginbfrange <01> <00> [", "begincidrange <00> 1 <00>",
          "beginbfrange <00> <01> [<41> /a", "%", "/", "<<", "(", "beginbfchar <> <>"})
        EXPECT_TRUE(read_cmap(text).characters.size() + read_cmap(text).cids.size() <= 1) << text;
    EXPECT_FALSE(read_cmap("/WMode 1 def").complete);
    EXPECT_EQ(read_cmap("begincodespacerange <00> <7F> <8000> <FFFF> endcodespacerange").code_bytes, 0);
    EXPECT_EQ(read_cmap("beginbfchar <01> <D83DDE00> endbfchar").characters.at(0).value, 0x1F600u);
}

TEST(ReadFontTest, WhatIsNoFont)
{
    MemoryDocument doc("[1]; /Subtype /Type3; 3 0 R; /BaseFont /Helvetica; /Subtype /Type0 /DescendantFonts [5 0 R]");
    for (const uint32_t num : {1u, 2u, 3u, 4u, 9u}) {
        CPDFObj reference;
        reference.set_ref({num, 0});
        EXPECT_FALSE(read_font(doc.xref, reference)) << num;
    }
    CPDFObj own_descendant;
    own_descendant.set_ref({5, 0});
    EXPECT_FALSE(read_font(doc.xref, own_descendant)->has('A'));
}

// The default fonts of real forms; those that are not embedded show English.
TEST(CorpusTest, FontsOfForms)
{
    const auto dictionary_in = [](CPDFXRefTable& xref, const CPDFDictionary* dict, const char* key, CPDFObj& out) {
        resolve_obj(&xref, dict ? dict->get_item(key) : nullptr, out);
        return out.dictionary();
    };
    for (const std::string& path : corpus_files()) {
        SCOPED_TRACE(path);
        FileAtWork file(read_text_file(path));
        CPDFObj root, form, resources, list;
        const auto* fonts = dictionary_in(file.xref, &file.reader.trailer(), "Root", root);
        for (const auto& [key, out] : {std::pair("AcroForm", &form), {"DR", &resources}, {"Font", &list}})
            fonts = dictionary_in(file.xref, fonts, key, *out);
        for (int32_t i = 0; fonts && i < fonts->count; ++i) {
            CPDFObj dict;
            resolve_obj(&file.xref, &fonts->items[i]->value, dict);
            const std::string text = show_object(dict);
            const auto font = read_font(file.xref, dict);
            if (!font || text.find("/Type0") != std::string::npos || text.find("Descriptor") != std::string::npos)
                continue;
            EXPECT_TRUE(font->has('A') && font->has('e') && font->has(' ')) << text;
        }
    }
}
