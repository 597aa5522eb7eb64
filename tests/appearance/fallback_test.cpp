#include "appearance/font/fallback/fallback_fonts.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "appearance/font/fallback/fallback_font.h"
#include "appearance/font/fallback/machine_fonts.h"
#include "core/text.h"
#include "file/update.h"
#include "tests/support/alloc_walk.h"
#include "tests/support/pdf_builder.h"

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

enum class RUN { LEFT_TO_RIGHT, RIGHT_TO_LEFT };

class FallbackTest : public testing::Test {
protected:
    // The glyphs of a text in the font for its first character; none where this machine has no such font.
    std::vector<TEXT_GLYPH> shape(std::u32string_view text, RUN run = RUN::LEFT_TO_RIGHT)
    {
        std::vector<TEXT_GLYPH> glyphs;
        font = fonts.font_for(text[0], {});
        if (font)
            font->shape(text, 0, text.size(), run == RUN::RIGHT_TO_LEFT, glyphs);
        return glyphs;
    }

    uint32_t glyph_of(const TEXT_GLYPH& glyph) const
    {
        return dynamic_cast<CPDFFallbackFont&>(*font).codes().all().at(glyph.code).glyph;
    }

    static CPDFMachineFonts& machine()
    {
        static CPDFMachineFonts fonts;
        return fonts;
    }

    CPDFFallbackFonts fonts{machine()};
    CPDFTextFont* font = nullptr;
};

// The codes' texts, as the document's CMap has them.
std::map<uint32_t, std::u32string> read_cmap(const std::string& cmap)
{
    std::map<uint32_t, std::u32string> texts;
    for (const std::string& line : split(cmap, '\n')) {
        if (line.size() < 9 || line[0] != '<' || line[7] != '<' || line == "<0000> <FFFF>")
            continue;
        std::u32string& text = texts[static_cast<uint32_t>(std::stoul(line.substr(1, 4), nullptr, 16))];
        for (size_t at = 8; at + 4 < line.size(); at += 4) {
            const char32_t unit = static_cast<char32_t>(std::stoul(line.substr(at, 4), nullptr, 16));
            if (unit >= 0xDC00 && unit < 0xE000)
                text.back() = 0x10000 + ((text.back() - 0xD800) << 10) + (unit - 0xDC00);
            else
                text += unit;
        }
    }
    return texts;
}

// The object that entry `key` of object `num` refers to.
uint32_t referred(FileAtWork& file, uint32_t num, const char* key)
{
    const std::string value = show_entry(file.xref, num, key);
    return static_cast<uint32_t>(std::stoul(value[0] == '[' ? value.substr(1) : value));
}

std::string small_file()
{
    return PdfBuilder()
        .object(1, "<</Type/Catalog/Pages 2 0 R>>")
        .object(2, "<</Type/Pages/Kids[]/Count 0>>")
        .table()
        .text;
}

}  // namespace

TEST_F(FallbackTest, LettersJoinAndMove)
{
    const std::vector<TEXT_GLYPH> alone = shape(U"ب", RUN::RIGHT_TO_LEFT);
    if (alone.empty())
        GTEST_SKIP() << "no Arabic font";
    const uint32_t alone_glyph = glyph_of(alone[0]);
    const std::vector<TEXT_GLYPH> joined = shape(U"ببب", RUN::RIGHT_TO_LEFT);
    ASSERT_EQ(joined.size(), 3u);
    EXPECT_NE(glyph_of(joined[0]), alone_glyph);
    EXPECT_NE(glyph_of(joined[1]), glyph_of(joined[2]));
    EXPECT_EQ(joined[0].cluster, 2u);
    EXPECT_EQ(joined[2].cluster, 0u);

    // A part of a text is shaped as part of it.
    std::vector<TEXT_GLYPH> middle;
    font->shape(U"ببب", 1, 2, true, middle);
    ASSERT_EQ(middle.size(), 1u);
    EXPECT_EQ(glyph_of(middle[0]), glyph_of(joined[1]));
    EXPECT_EQ(middle[0].cluster, 1u);

    const std::vector<TEXT_GLYPH> hindi = shape(U"कि");
    if (hindi.empty())
        GTEST_SKIP() << "no Hindi font";
    ASSERT_EQ(hindi.size(), 2u);
    EXPECT_EQ(glyph_of(hindi[1]), glyph_of(shape(U"क")[0])) << "the vowel stands first";
}

// The pen is moved where the widths that the document gives would leave it elsewhere.
TEST_F(FallbackTest, KernsAgainstTheWidths)
{
    for (const std::u32string text : {U"жж", U"AVAVA", U"र्क", U"ที่นี่"}) {
        SCOPED_TRACE(static_cast<unsigned>(text[0]));
        const std::vector<TEXT_GLYPH> glyphs = shape(text);
        if (!font)
            GTEST_SKIP() << "a font is missing";
        for (const TEXT_GLYPH& glyph : glyphs) {
            const int width = dynamic_cast<CPDFFallbackFont&>(*font).codes().all().at(glyph.code).width;
            EXPECT_NEAR(glyph.advance, static_cast<float>(width) / 1000 + glyph.kern, 0.001);
        }
    }
}

// Every text is set, embedded, written into a file and read back from the CMap there.
TEST_F(FallbackTest, TextComesBack)
{
    const struct {
        const char* label;
        std::u32string text;
        RUN run = RUN::LEFT_TO_RIGHT;
    } cases[] = {
        {"Arabic with a ligature and a mark", U"سلام مَر", RUN::RIGHT_TO_LEFT},
        {"Persian with a non-joiner", U"می‌خواهم", RUN::RIGHT_TO_LEFT},
        {"Hebrew", U"שָׁלוֹם", RUN::RIGHT_TO_LEFT},
        {"Hindi", U"किताब क्षि र्क"},
        {"Thai with a vowel that is two", U"กำ น้ำ ที่นี่"},
        {"Chinese", U"中文繁體"},
        {"Japanese", U"日本語ひらがな"},
        {"Korean", U"한국어"},
        {"Polish, Greek, Russian", U"Zażółć Ελληνικά Кириллица"},
        {"symbols above U+FFFF", U"😀👨\u200d👩"},
    };
    FileAtWork file(small_file());
    std::vector<std::string> missing;
    std::vector<uint32_t> objects;
    std::vector<std::string> codes;
    for (const auto& c : cases) {
        std::vector<TEXT_GLYPH> glyphs = shape(c.text, c.run);
        if (c.run == RUN::RIGHT_TO_LEFT)
            std::reverse(glyphs.begin(), glyphs.end());
        objects.push_back(font ? fonts.object_of(*font, file.xref).num : 0);
        codes.emplace_back();
        for (const TEXT_GLYPH& glyph : glyphs)
            font->append_code(glyph.code, codes.back());
    }
    ASSERT_TRUE(fonts.embed(file.xref));
    std::string update;
    write_update(update, file.xref, file.reader, file.bytes.data(), file.bytes.size());
    FileAtWork saved(std::string(file.bytes.begin(), file.bytes.end()) + update);
    size_t found = 0;
    for (size_t i = 0; i < codes.size(); ++i) {
        SCOPED_TRACE(cases[i].label);
        if (objects[i] == 0)
            continue;
        ++found;
        const auto texts = read_cmap(saved.data(referred(saved, objects[i], "ToUnicode")));
        std::u32string text;
        for (size_t at = 0; at + 1 < codes[i].size(); at += 2)
            text += texts.at(static_cast<uint8_t>(codes[i][at]) << 8 | static_cast<uint8_t>(codes[i][at + 1]));
        EXPECT_EQ(text, cases[i].text);
        const uint32_t descendant = referred(saved, objects[i], "DescendantFonts");
        const uint32_t descriptor = referred(saved, descendant, "FontDescriptor");
        const bool is_cff = show_entry(saved.xref, descendant, "Subtype") == "/CIDFontType0";
        const std::string program = saved.data(referred(saved, descriptor, is_cff ? "FontFile3" : "FontFile2"));
        EXPECT_GT(program.size(), 100u);
        EXPECT_LT(program.size(), 200000u);
    }
    if (found < codes.size())
        GTEST_SKIP() << "fonts for " << found << " of " << codes.size() << " scripts only";
}

TEST_F(FallbackTest, AFontThatIsUsedAgainKeepsItsObject)
{
    const std::vector<TEXT_GLYPH> first = shape(U"ж");
    if (first.empty())
        GTEST_SKIP() << "no Cyrillic font";
    FileAtWork file(small_file());
    std::string bytes;
    const PDF_REF object = fonts.object_of(*font, file.xref);
    font->append_code(first[0].code, bytes);
    ASSERT_TRUE(fonts.embed(file.xref));
    const int32_t objects = file.xref.changed_count();
    const uint32_t cmap = referred(file, object.num, "ToUnicode");
    EXPECT_THAT(file.data(cmap), AllOf(HasSubstr("<0436>"), Not(HasSubstr("<044F>"))));

    font->append_code(shape(U"я")[0].code, bytes);
    EXPECT_EQ(fonts.object_of(*font, file.xref).num, object.num);
    ASSERT_TRUE(fonts.embed(file.xref));
    EXPECT_EQ(file.xref.changed_count(), objects);
    EXPECT_THAT(file.data(cmap), AllOf(HasSubstr("<0436>"), HasSubstr("<044F>")));
}

TEST_F(FallbackTest, WithoutMemoryNothingOfAFontIsWritten)
{
    if (shape(U"ж").empty())
        GTEST_SKIP() << "no Cyrillic font";
    each_failed_allocation([&](const auto& arm) {
        CPDFFallbackFonts own(machine());
        MemoryDocument document("/A 1");
        CPDFTextFont& text_font = *own.font_for(U'ж', {});
        const PDF_REF object = own.object_of(text_font, document.xref);
        std::vector<TEXT_GLYPH> glyphs;
        text_font.shape(U"ж", 0, 1, false, glyphs);
        std::string bytes;
        text_font.append_code(glyphs[0].code, bytes);
        bool done = false;
        const bool failed = arm([&] { done = own.embed(document.xref); });
        EXPECT_EQ(done, !failed);
        for (uint32_t num = object.num; failed && num < document.xref.next_num(); ++num)
            EXPECT_EQ(document.show(num), "null");
    });
}

TEST_F(FallbackTest, AnyTextIsShaped)
{
    std::u32string marks = U"ب";
    for (int i = 0; i < 50000; ++i)
        marks += char32_t(0x64B + i % 8);
    const std::u32string nonsense = {U'ب', 0xD800, 0, 0x7FFFFFFF, 0xFFFF, 0x110000};
    for (const std::u32string& text : {marks, U"ب" + std::u32string(50000, U'\u200d') + U"ب", nonsense}) {
        for (const RUN run : {RUN::LEFT_TO_RIGHT, RUN::RIGHT_TO_LEFT}) {
            const std::vector<TEXT_GLYPH> glyphs = shape(text, run);
            if (!font)
                GTEST_SKIP() << "no Arabic font";
            ASSERT_FALSE(glyphs.empty());
            for (const TEXT_GLYPH& glyph : glyphs)
                ASSERT_LT(glyph.cluster, text.size());
        }
    }
}

TEST(MachineFontsTest, WithoutLibraryOrFontsThereIsASentence)
{
    const struct {
        const char* shaping;
        const char* subsets;
        std::string problem;
    } cases[] = {
        {"libnone.so.0", HARFBUZZ_SUBSET_LIBRARY, "libnone.so.0"},
        {HARFBUZZ_SHAPING_LIBRARY, "libnone.so.0", "libnone.so.0"},
        {HARFBUZZ_SHAPING_LIBRARY, HARFBUZZ_SHAPING_LIBRARY, "hb_subset"},
    };
    for (const auto& c : cases) {
        CPDFMachineFonts machine(c.shaping, c.subsets);
        EXPECT_THAT(machine.problem(), IsEmpty());
        EXPECT_EQ(machine.find(U'ж', {}), nullptr);
        EXPECT_THAT(machine.problem(), HasSubstr(c.problem));
    }

    const TempFolder folder;
    setenv("FONTCONFIG_FILE", folder.write("fonts.conf", "<fontconfig></fontconfig>").c_str(), 1);
    CPDFMachineFonts machine;
    EXPECT_EQ(machine.find(U'ж', {}), nullptr);
    EXPECT_THAT(machine.problem(), Not(IsEmpty()));
    unsetenv("FONTCONFIG_FILE");
}

TEST(MachineFontsTest, StyleOfAFont)
{
    const auto show = [](const FONT_STYLE& style) {
        return std::string(style.serif ? "serif " : "") + (style.mono ? "mono " : "") + (style.bold ? "bold " : "") +
               (style.italic ? "italic" : "");
    };
    const struct {
        const char* name;
        uint32_t flags;
        std::string style;
    } cases[] = {
        {"Helvetica", 0, ""},
        {"Times-BoldItalic", 0, "serif bold italic"},
        {"ABCDEF+CourierNewPS-Oblique", 0, "mono italic"},
        {"PTSans-SerifBlack", 0, "bold "},
        {"F1", 1 | 2 | 64 | 1 << 18, "serif mono bold italic"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(show(font_style(c.name, c.flags)), c.style) << c.name;
}
