#include "tests/support/pdf_builder.h"

namespace {
PdfBuilder base(const std::string& junk = "")
{
    return PdfBuilder(junk).object(1, "<</Type/Catalog>>").object(4, "(four)").object(5, "[5 0 R]");
}

PdfBuilder from_byte_0(size_t junk)
{
    PdfBuilder file(std::string(junk - 1, '!') + '\n');
    return file.count_junk().object(1, "<</Type/Catalog>>").object(4, "(four)");
}

std::string with_end(const char* end)
{
    PdfBuilder file = base();
    file.entry_end = end;
    return file.table().text;
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

}  // namespace

TEST(XRefSectionTest, FindsWhatIsThere)
{
    const std::string plain = base().table().text;
    const std::string stream_9 = base().xref_stream(9).text;
    PdfBuilder fixed = base();
    fixed.table();
    const auto start = [&fixed](int off) { return "\n" + std::to_string(static_cast<int>(fixed.section) + off); };
    const auto stream = [](const std::vector<int>& widths) { return base().xref_stream(9, "", widths).text; };
    const auto entry_4 = [](uint32_t type, uint32_t at) { return base().entry(4, type, at, 0); };
    const struct {
        const char* label;
        std::string text;
        const char* object_4 = "(four)";
    } cases[] = {
        {"entries of 19 bytes", with_end("\n")},
        {"entries of 21 bytes", with_end(" \r\n")},
        {"stream without types", stream({0, 4, 0})},
        {"500 bytes before the header, counted", from_byte_0(500).table().text},
        {"stream with junk, counted", from_byte_0(20).xref_stream(9).text},
        {"start on the same line", with_start(fixed, " " + start(0).substr(1) + "\r")},
        {"start behind a comment", with_start(fixed, "%\n" + start(0))},
        {"table begins at 1", replaced(plain, "xref\n0 2", "xref\n1 2")},
        {"more stated than there", replaced(plain, "4 2\n", "4 7\n")},
        {"object without space before its value", replaced(plain, "4 0 obj\n(four)\nendobj", "4 0 obj(four)endobj\n")},
        {"no white space behind the end", plain.substr(0, plain.size() - 7)},
        {"hybrid, hidden by the table", base().object_stream(7, {{4, "(four)"}}).hybrid(9).text},
        {"Prev to itself", base().table("/Prev " + std::to_string(fixed.section)).text},
        {"XRefStm far outside", base().table("/XRefStm 4294967295").text},
        {"no object there", entry_4(PDF_XREF_IN_FILE, 11).table().text, "null"},
        {"behind the end", entry_4(PDF_XREF_IN_FILE, 4000000000).table().text, "null"},
        {"free in the newer section", base().table().entry(4, PDF_XREF_FREE, 0, 1).table().text, "null"},
        {"in an object that is no stream", entry_4(PDF_XREF_IN_STREAM, 5).xref_stream(9).text, "null"},
        {"in itself", entry_4(PDF_XREF_IN_STREAM, 4).xref_stream(9).text, "null"},
        // What a section states sizes nothing.
        {"huge Size", replaced(plain, "/Size 6", "/Size 2147483647")},
        {"entries of a table", replaced(plain, "4 2\n", "4 4294967295\n")},
        {"numbers of a table", replaced(plain, "xref\n0 2\n", "xref\n9 0\n4294967295 4294967295\n0 2\n")},
        {"numbers of a stream", replaced(stream_9, "Index[0 1", "Index[2147483647 0 8000000 0 0 1")},
        {"widths", replaced(stream_9, "/Type/XRef", "/DecodeParms<</Columns 2147483647/Predictor 12>>/Type/XRef")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FileAtWork file(c.text);
        EXPECT_EQ(file.show(4) + file.show(1) + file.show(8), c.object_4 + std::string("<< /Type /Catalog >>null"));
        EXPECT_LE(file.xref.entry_count(), 512u);
        EXPECT_LE(file.xref.new_obj_num(), LIMIT_OBJECT_NUMBER);
    }
}

TEST(XRefSectionTest, ChainsOfSectionsEnd)
{
    for (const char* loop : {"/Prev AAA", "/Prev BBB", "/Prev BBB/XRefStm AAA"}) {
        SCOPED_TRACE(loop);
        PdfBuilder builder = base();
        const uint32_t first = builder.table(loop).section;
        const uint32_t second = builder.object(6, "(six)").table().section;
        for (const auto& [mark, at] : {std::pair{"AAA", first}, {"BBB", second}}) {
            for (size_t p = 0; (p = builder.text.find(mark)) != std::string::npos;)
                builder.text.replace(p, 3, std::to_string(1000 + at), 1, 3);
        }
        FileAtWork file(builder.text);
        EXPECT_EQ(file.show(6) + file.show(77) + file.show(4), "(six)null(four)");
    }
}

TEST(StreamObjectTest, LengthIsCheckedAgainstTheData)
{
    const auto data = [](const std::string& length, const std::string& rest) {
        PdfBuilder file = base();
        file.object(6, "<<" + length + ">>" + rest).object(7, "3").object(8, "8 0 R");
        return FileAtWork(file.table().text).data(6);
    };
    for (const char* length :
         {"/Length 3", "/Length 7 0 R", "/Length 1", "/Length 300", "/Length 25", "/Length 2147483647", "/Length -3",
          "", "/Length(3)", "/Length 6 0 R", "/Length 8 0 R", "/Length 70 0 R"})
        EXPECT_EQ(data(length, "\nstream\nabc\nendstream"), "abc") << length;
    const char* const rests[] = {" stream\r\nabc\r\nendstream", "\nstream\rabc endstream", "\nstream\nabcendstream",
                                 "\nstream\nabc"};
    for (const char* rest : rests)
        EXPECT_EQ(data("/Length 3", rest), "abc") << rest;
    EXPECT_EQ(data("", "stream\r\nabc\r\nendstream"), "abc");
    EXPECT_EQ(data("/Length 13", "\nstream\nan endstream!\nendstream"), "an endstream!");
    EXPECT_EQ(data("/Length 0", "\nstream\n\nendstream"), "");
    EXPECT_EQ(data("/Length 3", ""), "no stream");
}
