#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/limits.h"
#include "tests/support/pdf_builder.h"

namespace {

PdfBuilder base(const std::string& junk = "")
{
    PdfBuilder file(junk);
    file.object(1, "<</Type/Catalog>>").object(4, "(four)").object(5, "[5 0 R]");
    return file;
}

PdfBuilder from_byte_0(const std::string& junk)
{
    PdfBuilder file(junk);
    file.count_junk().object(1, "<</Type/Catalog>>").object(4, "(four)");
    return file;
}

// `file` with the number behind its last "startxref" changed.
std::string with_start(const PdfBuilder& file, const std::string& number)
{
    return file.text.substr(0, file.text.rfind("startxref")) + "startxref" + number + "\n%%EOF\n";
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

size_t known_entries(const CPDFXRefTable& xref)
{
    return static_cast<size_t>(std::count_if(xref.entries(), xref.entries() + xref.entry_count(),
                                             [](const PDF_XREF_ENTRY& entry) { return entry.gen != PDF_XREF_NO_GEN; }));
}

}  // namespace

TEST(XRefSectionTest, FindsObject4)
{
    const auto table = [](PdfBuilder file) { return file.table(); };
    const auto with_end = [](const char* end) {
        PdfBuilder file = base();
        file.entry_end = end;
        return file.table().text;
    };
    const std::string plain = table(base()).text;
    PdfBuilder fixed = base();
    fixed.table();
    const auto start = [&fixed](int off) { return "\n" + std::to_string(static_cast<int>(fixed.section) + off); };
    const auto stream = [](const std::vector<int>& widths) { return base().xref_stream(9, "", widths).text; };
    const auto junk = [](size_t size) { return std::string(size - 1, '!') + '\n'; };
    const struct {
        const char* label;
        std::string text;
    } cases[] = {
        {"table", plain},
        {"entries of 19 bytes, LF", with_end("\n")},
        {"entries of 19 bytes, CR", with_end("\r")},
        {"entries of 20 bytes, CR LF", with_end("\r\n")},
        {"entries of 21 bytes", with_end(" \r\n")},
        {"stream", stream({1, 4, 2})},
        {"stream without types", stream({0, 4, 0})},
        {"stream with 8 bytes", stream({1, 8, 2})},
        {"stream with odd widths", stream({2, 3, 1})},
        {"5 bytes before the header", table(base(junk(5))).text},
        {"500 bytes before the header", table(base(junk(500))).text},
        {"5 bytes before the header, counted", from_byte_0(junk(5)).table().text},
        {"40 bytes before the header, counted", from_byte_0(junk(40)).table().text},
        {"500 bytes before the header, counted", from_byte_0(junk(500)).table().text},
        {"stream with junk, counted", from_byte_0(junk(20)).xref_stream(9).text},
        {"start in the white space before", with_start(fixed, start(-1))},
        {"start some bytes early", with_start(fixed, start(-20))},
        {"start some bytes late", with_start(fixed, start(3))},
        {"start on the same line", with_start(fixed, " " + start(0).substr(1) + "\r")},
        {"start behind a comment", with_start(fixed, "%\n" + start(0))},
        {"table begins at 1", replaced(plain, "xref\n0 2", "xref\n1 2")},
        {"more stated than there", replaced(plain, "4 2\n", "4 7\n")},
        {"generation of object 0 is 0", replaced(plain, "65535 f", "00000 f")},
        {"object 0 in use", replaced(plain, "65535 f", "00000 n")},
        {"object without space before its value", replaced(plain, "4 0 obj\n(four)\nendobj", "4 0 obj(four)endobj\n")},
        {"no white space behind the end", plain.substr(0, plain.size() - 7)},
        {"hybrid", base().object_stream(7, {{6, "(six)"}}).hybrid(9).text},
        {"hybrid, hidden by the table", base().object_stream(7, {{4, "(four)"}}).hybrid(9).text},
        {"Prev to itself", base().table("/Prev " + std::to_string(fixed.section)).text},
        {"Prev to the middle of nowhere", base().table("/Prev 15").text},
        {"XRefStm to its own table", base().table("/XRefStm " + std::to_string(fixed.section)).text},
        {"XRefStm far outside", base().table("/XRefStm 4294967295").text},
        {"Size too small", base().table("/Size 2").text},
        {"no Size", replaced(plain, "/Size", "/S")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FileAtWork file(c.text);
        ASSERT_TRUE(file.status.ok()) << file.status.text;
        EXPECT_EQ(file.show(4), "(four)");
        EXPECT_EQ(file.show(1), "<< /Type /Catalog >>");
        EXPECT_EQ(file.show(8), "null");
    }
}

TEST(XRefSectionTest, LeavesOutObject4)
{
    PdfBuilder newer = base();
    newer.table();
    const struct {
        const char* label;
        std::string text;
    } cases[] = {
        {"other number there", base().object(3, "(three)").entry(4, PDF_XREF_IN_FILE, 9, 0).table().text},
        {"no object there", base().entry(4, PDF_XREF_IN_FILE, 11, 0).table().text},
        {"behind the end", base().entry(4, PDF_XREF_IN_FILE, 4000000000, 0).table().text},
        {"position 0", base().entry(4, PDF_XREF_IN_FILE, 0, 0).table().text},
        {"free in the newer section", newer.entry(4, PDF_XREF_FREE, 0, 1).table().text},
        {"refers to itself", base().object(4, "4 0 R").table().text},
        {"in an object that is no stream", base().entry(4, PDF_XREF_IN_STREAM, 5, 0).xref_stream(9).text},
        {"in itself", base().entry(4, PDF_XREF_IN_STREAM, 4, 0).xref_stream(9).text},
        {"kind of entry not known", base().entry(4, 3, 0, 0).xref_stream(9).text},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FileAtWork file(c.text);
        ASSERT_TRUE(file.status.ok()) << file.status.text;
        EXPECT_EQ(file.show(4), "null");
        EXPECT_EQ(file.show(1), "<< /Type /Catalog >>");
    }
}

TEST(XRefSectionTest, SaysWhatIsWrong)
{
    const std::string plain = base().table().text;
    const struct {
        const char* label;
        std::string text;
        PDF_CODE code;
        const char* sentence;
    } cases[] = {
        {"empty", "", PDF_CODE::NOT_PDF, "this is not a PDF file"},
        {"text", "Dear reader,\n", PDF_CODE::NOT_PDF, "this is not a PDF file"},
        {"cut in the table", plain.substr(0, plain.find("trailer")), PDF_CODE::DAMAGED,
         "position of the cross-reference"},
        {"start outside", with_start(base().table(), "\n999999"), PDF_CODE::DAMAGED, "damaged at byte 999999"},
        {"start is no number", with_start(base().table(), "\nx"), PDF_CODE::DAMAGED, "position of the cross-reference"},
        {"trailer is no dictionary", replaced(plain, "trailer\n<<", "trailer\n[["), PDF_CODE::DAMAGED,
         "no cross-reference"},
        {"stream without W", replaced(base().xref_stream(9).text, "/W[", "/V["), PDF_CODE::DAMAGED,
         "no cross-reference"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const FileAtWork file(c.text);
        EXPECT_EQ(file.status.code, c.code);
        EXPECT_NE(file.status.text.find(c.sentence), std::string::npos) << file.status.text;
    }
}

TEST(XRefSectionTest, OlderSectionsWaitUntilTheyAreNeeded)
{
    PdfBuilder builder = base();
    builder.object(30, "(oldest)").table();
    builder.object(4, "(middle)").object(20, "(middle)").xref_stream(21);
    builder.object(4, "(newest)").table("/Size 6");
    FileAtWork file(builder.text);
    EXPECT_EQ(file.show(4), "(newest)");
    EXPECT_EQ(known_entries(file.xref), 1u);
    EXPECT_EQ(file.show(20), "(middle)");
    EXPECT_EQ(known_entries(file.xref), 3u);
    EXPECT_EQ(file.xref.new_obj_num(), 31u);
    EXPECT_EQ(file.show(30), "(oldest)");
    EXPECT_EQ(file.show(4), "(newest)");
    EXPECT_EQ(file.xref.new_obj_num(), 32u);
}

TEST(XRefSectionTest, ChainsOfSectionsEnd)
{
    PdfBuilder two = base();
    two.table();
    const std::string first = std::to_string(two.section);
    two.object(6, "(six)").table();
    const std::string second = std::to_string(two.section);
    for (const std::string& loop : {"/Prev " + second, "/Prev " + second + "/XRefStm " + second, "/Prev " + first}) {
        SCOPED_TRACE(loop);
        // The older trailer grows by as many bytes as the comment before it gives up.
        const std::string room(60, ' ');
        PdfBuilder builder = base();
        builder.raw("%" + room + "\n").table(loop);
        builder.object(6, "(six)").table();
        FileAtWork file(builder.text);
        EXPECT_EQ(file.show(6), "(six)");
        EXPECT_EQ(file.show(77), "null");
        EXPECT_EQ(file.show(4), "(four)");
    }
}

TEST(XRefSectionTest, StatedCountsSizeNothing)
{
    const std::string plain = base().table().text;
    const std::string stream = base().xref_stream(9).text;
    const struct {
        const char* label;
        std::string text;
    } cases[] = {
        {"Size", replaced(plain, "/Size 6", "/Size 2147483647")},
        {"entries of a table", replaced(plain, "4 2\n", "4 4294967295\n")},
        {"numbers of a table", replaced(plain, "xref\n0 2\n", "xref\n9 0\n4294967295 4294967295\n0 2\n")},
        {"numbers of a stream", replaced(stream, "Index[0 1", "Index[2147483647 0 8000000 0 0 1")},
        {"entries of a stream", replaced(stream, "5 1 9 1", "5 1 9 2147483647")},
        {"widths", replaced(stream, "/Type/XRef", "/DecodeParms<</Columns 2147483647/Predictor 12>>/Type/XRef")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FileAtWork file(c.text);
        ASSERT_TRUE(file.status.ok()) << file.status.text;
        EXPECT_EQ(file.show(4), "(four)");
        EXPECT_LE(file.xref.entry_count(), 512u);
        EXPECT_LE(file.xref.new_obj_num(), LIMIT_OBJECT_NUMBER);
    }
}

TEST(StreamObjectTest, LengthIsCheckedAgainstTheData)
{
    const auto stream = [](const std::string& length, const std::string& rest = "\nstream\nabc\nendstream") {
        PdfBuilder file = base();
        file.object(6, "<<" + length + ">>" + rest).object(7, "3").object(8, "8 0 R").object(9, "<<>>");
        return file.table().text;
    };
    const struct {
        const char* label;
        std::string text;
        const char* data;
    } cases[] = {
        {"right", stream("/Length 3"), "abc"},
        {"indirect", stream("/Length 7 0 R"), "abc"},
        {"too small", stream("/Length 1"), "abc"},
        {"too large", stream("/Length 300"), "abc"},
        {"beyond the object", stream("/Length 25"), "abc"},
        {"huge", stream("/Length 2147483647"), "abc"},
        {"negative", stream("/Length -3"), "abc"},
        {"missing", stream(""), "abc"},
        {"no number", stream("/Length(3)"), "abc"},
        {"its own object", stream("/Length 6 0 R"), "abc"},
        {"a loop", stream("/Length 8 0 R"), "abc"},
        {"a missing object", stream("/Length 70 0 R"), "abc"},
        {"a dictionary", stream("/Length 9 0 R"), "abc"},
        {"word inside the data", stream("/Length 13", "\nstream\nan endstream!\nendstream"), "an endstream!"},
        {"CR LF", stream("/Length 3", " stream\r\nabc\r\nendstream"), "abc"},
        {"CR LF without a length", stream("", "stream\r\nabc\r\nendstream"), "abc"},
        {"lone CR", stream("/Length 3", "\nstream\rabc endstream"), "abc"},
        {"no end of line before the end", stream("/Length 3", "\nstream\nabcendstream"), "abc"},
        {"no endstream", stream("/Length 3", "\nstream\nabc"), "abc"},
        {"empty", stream("/Length 0", "\nstream\n\nendstream"), ""},
        {"no stream", stream("/Length 3", ""), "no stream"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FileAtWork file(c.text);
        EXPECT_EQ(file.data(6), c.data);
    }
}
