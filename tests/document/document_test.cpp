#include "document/document.h"

#include "document/lookup/field_text.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "tests/support/pdf_builder.h"

namespace {
CPDFStatus open_text(CPDFDocument& document, const std::string& text)
{
    return document.open(std::vector<uint8_t>(text.begin(), text.end()));
}

std::string saved(CPDFDocument& document)
{
    std::vector<uint8_t> out;
    EXPECT_TRUE(document.save(out).ok());
    return {out.begin(), out.end()};
}

// The value of the text field `name`; "no field", "no value".
std::string value_of(CPDFDocument& document, const std::string& name)
{
    CPDFField* field = document.field(name);
    if (!field)
        return "no field";
    const PDF_String* value = field->get_edit_value();
    return value ? utf8_of(*value) : "no value";
}

std::string text_form(const std::string& more = "")
{
    return PdfBuilder().form({"<</FT/Tx/T(a)/V(old)" + more + ">>"}).table().text;
}

}  // namespace

TEST(CPDFDocumentTest, OpenSaysWhatIsWrong)
{
    const TempFolder folder;
    const std::string form = text_form();
    std::string without_root = form;
    without_root.replace(form.find("/Root"), 5, "/Tree");
    const struct {
        const char* label;
        std::string text;
        PDF_CODE code;
        const char* sentence;
    } cases[] = {
        {"empty", "", PDF_CODE::NOT_PDF, "this is not a PDF file"},
        {"text", "Dear reader,\n", PDF_CODE::NOT_PDF, "this is not a PDF file"},
        {"truncated", form.substr(0, form.size() / 2), PDF_CODE::DAMAGED, "damaged at byte"},
        {"no trailer", form.substr(0, form.find("trailer")), PDF_CODE::DAMAGED, "position of the cross-reference"},
        {"no table", PdfBuilder().raw("startxref\n9\n%%EOF").text, PDF_CODE::DAMAGED, "no cross-reference"},
        {"encrypted", PdfBuilder().form({}).table("/Encrypt 2 0 R").text, PDF_CODE::ENCRYPTED, "encrypted"},
        {"no root", without_root, PDF_CODE::NO_CATALOG, "names none"},
        {"root is missing", PdfBuilder().form({}).table("/Root 70 0 R").text, PDF_CODE::NO_CATALOG, "object 70"},
        {"root is no dictionary", PdfBuilder().object(1, "[]").table().text, PDF_CODE::NO_CATALOG, "object 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        CPDFDocument from_bytes;
        CPDFDocument from_file;
        for (const CPDFStatus& status :
             {open_text(from_bytes, c.text), from_file.open(folder.write("form.pdf", c.text))}) {
            EXPECT_EQ(status.code, c.code) << status.text;
            EXPECT_NE(status.text.find(c.sentence), std::string::npos) << status.text;
        }
    }
    CPDFDocument document;
    EXPECT_EQ(document.open(folder.path("none.pdf")).code, PDF_CODE::NOT_FOUND);
    EXPECT_EQ(document.open(folder.path("form.pdf/below")).code, PDF_CODE::NOT_FOUND);
    EXPECT_EQ(document.open("/tmp").text, "this is a folder, not a file");
    EXPECT_TRUE(open_text(document, form).ok());
    EXPECT_EQ(value_of(document, "a"), "old");
}

TEST(CPDFDocumentTest, ADocumentWithoutAFormHasAnEmptyOne)
{
    for (const char* catalog : {"<</Type/Catalog>>", "<</AcroForm null>>", "<</AcroForm<<>>>>", "<</AcroForm 90 0 R>>",
                                "<</AcroForm[]>>", "<</AcroForm<</Fields 1 0 R>>>>", "<</AcroForm<</Fields[(x)]>>>>"}) {
        for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
            SCOPED_TRACE(catalog);
            CPDFDocument document;
            const std::string text = PdfBuilder().object(1, catalog).table().text;
            ASSERT_TRUE(document.open(std::vector<uint8_t>(text.begin(), text.end()), load).ok());
            EXPECT_EQ(document.has_form(),
                      text.find("/AcroForm") != std::string::npos && text.find("null") > text.size());
            EXPECT_FALSE(document.field("a") || document.field(""));
            for_each_field(document.form(), [](CPDFField&) { ADD_FAILURE(); });
            EXPECT_EQ(saved(document), text);
        }
    }
}

TEST(CPDFDocumentTest, ValuesRoundTripAsUtf8)
{
    const struct {
        const char* label;
        std::string value;
        const char* stored;  // the beginning of "V" in the file
        std::string read;    // where it differs
    } cases[] = {
        {"ASCII", "Grace (Hopper) \\ /A <<", "(Grace \\(Hopper\\)", ""},
        {"Latin-1", "Z\xC3\xBCrich", "(Z\xFCrich)", ""},
        {"line ends", "a\r\nb\rc\n\td", "<610D0A620D", ""},
        {"looks like a UTF-16 mark", "\xC3\xBE\xC3\xBF A", "<FEFF00FE00FF", ""},
        {"zero inside", std::string("a\0b", 3), "<FEFF006100000062>", ""},
        {"malformed", "a\xFF\xC3", "<FEFF0061FFFDFFFD>", "a\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        CPDFDocument document;
        const std::string text = text_form();
        ASSERT_TRUE(open_text(document, text).ok());
        ASSERT_TRUE(document.set_value(*document.field("a"), c.value).ok());
        const std::string output = saved(document);
        EXPECT_EQ(output.substr(0, text.size()), text);
        EXPECT_NE(output.find(std::string("/V") + c.stored, text.size()), std::string::npos);
        CPDFDocument again;
        ASSERT_TRUE(open_text(again, output).ok());
        EXPECT_EQ(value_of(again, "a"), c.read.empty() ? c.value : c.read);
        EXPECT_EQ(value_of(document, "a"), value_of(again, "a"));
    }
}

TEST(CPDFDocumentTest, SavesOverItsOwnInput)
{
    const TempFolder folder;
    const std::string path = folder.write("form.pdf", text_form());
    CPDFDocument document;
    ASSERT_TRUE(document.open(path).ok());
    for (const char* value : {"one", "two"}) {
        ASSERT_TRUE(document.set_value(*document.field("a"), value).ok());
        ASSERT_TRUE(document.save(path).ok());
        CPDFDocument again;
        ASSERT_TRUE(again.open(path).ok());
        EXPECT_EQ(value_of(again, "a"), value);
    }
}

// The bound on the work for one document is there for hostile files, not for long sessions.
TEST(CPDFDocumentTest, ALongSessionKeepsReading)
{
    const std::string fat = "/X(" + std::string(400000, 'x') + ")>>";
    CPDFDocument document;
    CPDFDocument by_name;
    const std::string text = PdfBuilder().form({"<</T(first)/FT/Tx" + fat, "<</T(a)/FT/Tx" + fat}).table().text;
    ASSERT_TRUE(open_text(document, text).ok());
    ASSERT_TRUE(by_name.open(std::vector<uint8_t>(text.begin(), text.end()), PDF_LOAD::NAMED_FIELDS).ok());
    for (int i = 0; i <= 400; ++i) {
        ASSERT_TRUE(document.set_value(*document.form().m_fields[i % 2], std::to_string(i)).ok());
        ASSERT_TRUE(by_name.field("a"));
    }
    CPDFDocument again;
    ASSERT_TRUE(open_text(again, saved(document)).ok());
    EXPECT_EQ(value_of(again, "first"), "400");
    EXPECT_EQ(value_of(again, "a"), "399");
}
