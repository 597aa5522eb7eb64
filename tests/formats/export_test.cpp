#include "formats/export/export_data.h"

#include <gtest/gtest.h>

#include "document/document.h"
#include "formats/field_cells.h"
#include "formats/import/csv.h"
#include "formats/import/fdf_data.h"
#include "formats/import/json_data.h"
#include "formats/import/xfdf_data.h"
#include "tests/support/pdf_builder.h"

namespace {

using Read = CPDFStatus (*)(std::string_view, CPDFFormData&);
constexpr std::pair<PDF_DATA_FORMAT, Read> FORMATS[] = {{PDF_DATA_FORMAT::JSON, read_json_data},
                                                        {PDF_DATA_FORMAT::FDF, read_fdf_data},
                                                        {PDF_DATA_FORMAT::XFDF, read_xfdf_data},
                                                        {PDF_DATA_FORMAT::CSV, read_csv_data}};

std::vector<uint8_t> bytes_of(const std::string& text)
{
    return {text.begin(), text.end()};
}

// A file with these entries of field dictionaries, numbered from 10.
std::vector<uint8_t> form_of(std::vector<std::string> fields)
{
    for (std::string& field : fields)
        field = "<<" + field + ">>";
    return bytes_of(PdfBuilder().form(fields).table().text);
}

std::string exported(CPDFDocument& document, PDF_DATA_FORMAT format)
{
    std::string out;
    const CPDFStatus status = write_form_data(document, format, nullptr, out);
    return status.ok() ? out : "! " + status.text;
}

// Exports, imports into a fresh copy, saves that and exports it again. Returns the number of values.
size_t expect_round_trip(const std::vector<uint8_t>& file, PDF_DATA_FORMAT format, Read read, size_t count = 0)
{
    CPDFDocument original;
    CPDFDocument copy;
    EXPECT_TRUE(original.open(file).ok() && copy.open(file).ok());
    const std::string data = exported(original, format);
    CPDFFormData entries;
    const CPDFStatus status = read(data, entries);
    EXPECT_TRUE(status.ok()) << status.text << "\n" << data;
    fit_cells(copy, "|", entries);
    for (const PDF_FORM_ENTRY& entry : entries) {
        CPDFField* field = copy.field(entry.name);
        EXPECT_NE(field, nullptr) << entry.name;
        if (!field)
            continue;
        PDF_FILL_PLAN plan;
        CPDFStatus filled = copy.check_value(*field, entry.value, PDF_FILL::FORCE, plan, entry.words);
        if (filled.ok())
            filled = copy.apply(plan);
        EXPECT_TRUE(filled.ok()) << entry.name << ": " << filled.text;
    }
    std::vector<uint8_t> saved;
    EXPECT_TRUE(copy.save(saved).ok());
    CPDFDocument again;
    EXPECT_TRUE(again.open(std::move(saved)).ok());
    EXPECT_EQ(exported(again, format), data);
    EXPECT_EQ(exported(again, PDF_DATA_FORMAT::JSON), exported(original, PDF_DATA_FORMAT::JSON));
    EXPECT_GE(entries.size(), count);
    return entries.size();
}

const std::vector<std::string> KINDS = {
    "/FT/Tx/T(empty)/V()",
    "/FT/Tx/T(none)",
    "/FT/Tx/T(odd)/V<FEFF0020000D000A0009003C0026005D005D003E00220027D83DDE0000A00028005C>",
    "/FT/Tx/T(a.b)/V(  two  )",
    "/FT/Tx/T(a)/V(\\r)",
    "/FT/Tx/T(a.b.c)/V(x,y)/MaxLen 2",
    "/FT/Tx/T(twice)/V(1)",
    "/FT/Tx/T(twice)/V(1)",
    "/FT/Tx/T(quote\"<>&\\)\\n)/V(7)",
    "/FT/Btn/T(check)/V/Not#20there",
    "/FT/Btn/Ff 65536/T(push)/V/On",
    "/FT/Ch/Ff 131072/T(shown)/Opt[[(e)(Exported)][(f)(F)]]/V(Exported)",
    "/FT/Ch/T(no option)/Opt[(a)]/V()",
    "/FT/Btn/Ff 49152/T(swapped)/V/1/Opt[(1)(0)]/Kids[24 0 R 25 0 R]",
    "/Subtype/Widget/Parent 23 0 R/AP<</N<</0 1 0 R>>>>",
    "/Subtype/Widget/Parent 23 0 R/AP<</N<</1 1 0 R>>>>",
    "/FT/Ch/T(cleared)/Opt[(a)]/V()/DV(a)",
};

TEST(ExportTest, EveryKindGoesOutAndComesBack)
{
    CPDFDocument cleared;
    ASSERT_TRUE(cleared.open(form_of(KINDS)).ok());
    EXPECT_TRUE(exported(cleared, PDF_DATA_FORMAT::CSV).ends_with(",\r\n"));
    for (const auto& [format, read] : FORMATS) {
        SCOPED_TRACE(static_cast<int>(format));
        // Empty cells of CSV are no values.
        expect_round_trip(form_of(KINDS), format, read, format == PDF_DATA_FORMAT::CSV ? 9 : 11);
    }
    const std::string list = "/FT/Ch/Ff 2097152/T(several)/Opt[(a)[(b)(B)](c)]/V[(c)(B)(c)]";
    CPDFDocument document;
    ASSERT_TRUE(document.open(form_of({list})).ok());
    EXPECT_EQ(exported(document, PDF_DATA_FORMAT::JSON), "{\n\"several\": [\"b\",\"c\"]\n}\n");
    EXPECT_EQ(exported(document, PDF_DATA_FORMAT::CSV), "several\r\nb|c\r\n");
    CPDFDocument joined;
    ASSERT_TRUE(joined.open(form_of({"/FT/Ch/Ff 2097152/T(s)/Opt[(a|b)(c)]/V[(a|b)(c)]"})).ok());
    EXPECT_EQ(exported(joined, PDF_DATA_FORMAT::CSV),
              "! field \"s\" has several values, one of them with the | that joins them in CSV");
    for (const auto& [format, read] : FORMATS)
        expect_round_trip(form_of({list}), format, read, 1);
}

TEST(ExportTest, FilesAreWrittenAsTheirStandardsSay)
{
    CPDFDocument document;
    const std::vector<std::string> fields = {"/T(p)/Kids[11 0 R 12 0 R]", "/FT/Tx/T(x)/V(1)/Parent 10 0 R",
                                             "/FT/Btn/T(y)/V/On/Parent 10 0 R", "/FT/Tx/T(c\\001)/V(,\")"};
    ASSERT_TRUE(document.open(form_of(fields)).ok());
    EXPECT_EQ(exported(document, PDF_DATA_FORMAT::FDF),
              "%FDF-1.2\n%\xE2\xE3\xCF\xD3\n1 0 obj\n<</FDF<</Fields[\n<</T(p)/Kids[<</T(x)/V(1)>><</T(y)/V/On>>]>>\n"
              "<</T<FEFF00630001>/V(,\")>>\n]>>>>\nendobj\ntrailer\n<</Root 1 0 R>>\n%%EOF\n");
    EXPECT_EQ(exported(document, PDF_DATA_FORMAT::CSV), "p.x,p.y,c\x01\r\n1,On,\",\"\"\"\r\n");
    EXPECT_EQ(exported(document, PDF_DATA_FORMAT::XFDF),
              "! field \"c\x01\" has a control character in its name, which XML can't hold");
    std::string out;
    const std::vector<CPDFField*> chosen = {document.field("p.y"), document.field("p")};
    ASSERT_TRUE(write_form_data(document, PDF_DATA_FORMAT::XFDF, &chosen, out).ok());
    EXPECT_EQ(out, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xfdf xmlns=\"http://ns.adobe.com/xfdf/\" "
                   "xml:space=\"preserve\">\n<fields>\n<field name=\"p\"><field name=\"y\"><value>On</value></field>"
                   "<field name=\"x\"><value>1</value></field></field>\n</fields>\n</xfdf>\n");
}

class ExportCorpusTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(ExportCorpusTest);
INSTANTIATE_TEST_SUITE_P(RealFiles, ExportCorpusTest, testing::ValuesIn(corpus_sample()), file_label);

TEST_P(ExportCorpusTest, ValuesGoOutAndComeBack)
{
    const std::vector<uint8_t> file = bytes_of(read_text_file(GetParam()));
    for (const auto& [format, read] : FORMATS) {
        CPDFDocument document;
        if (!document.open(file).ok())
            GTEST_SKIP() << "refused";
        const std::string data = exported(document, format);
        // Lists in CSV, control characters in XFDF.
        if (data[0] == '!')
            EXPECT_TRUE(format == PDF_DATA_FORMAT::CSV || data.find("XML can't hold") != std::string::npos) << data;
        else
            expect_round_trip(file, format, read);
    }
}

}  // namespace
