#include "document/document.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "core/dictionary.h"
#include "document/field_text.h"
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

class CountingReader : public CPDFFileReader {
public:
    using CPDFFileReader::CPDFFileReader;
    void read_object(CPDFXRefTable& xref, CPDFObj& out, uint32_t num, const PDF_XREF_ENTRY& entry,
                     const CPDFKeySet* keys) override
    {
        ++reads;
        CPDFFileReader::read_object(xref, out, num, entry, keys);
    }
    size_t reads = 0;
};

}  // namespace

TEST(CPDFDocumentTest, OpenSaysWhatIsWrong)
{
    const std::string path = "/tmp/formwork_test_" + std::to_string(::getpid()) + ".pdf";
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
        {"encrypted", PdfBuilder().form({}).table("/Encrypt 2 0 R").text, PDF_CODE::ENCRYPTED, "encrypted"},
        {"encrypted, stream", PdfBuilder().form({}).xref_stream(9, "/Encrypt<<>>").text, PDF_CODE::ENCRYPTED,
         "encrypted"},
        {"no root", without_root, PDF_CODE::NO_CATALOG, "names none"},
        {"root is no reference", PdfBuilder().form({}).table("/Root 7").text, PDF_CODE::NO_CATALOG, "names none"},
        {"root is missing", PdfBuilder().form({}).table("/Root 70 0 R").text, PDF_CODE::NO_CATALOG, "object 70"},
        {"root is no dictionary", PdfBuilder().object(1, "[]").table().text, PDF_CODE::NO_CATALOG, "object 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        std::ofstream(path, std::ios::binary) << c.text;
        CPDFDocument from_bytes;
        CPDFDocument from_file;
        for (const CPDFStatus& status : {open_text(from_bytes, c.text), from_file.open(path)}) {
            EXPECT_EQ(status.code, c.code) << status.text;
            EXPECT_NE(status.text.find(c.sentence), std::string::npos) << status.text;
        }
    }
    std::filesystem::remove(path);
    CPDFDocument document;
    EXPECT_EQ(document.open(path).code, PDF_CODE::NOT_FOUND);
    EXPECT_EQ(document.open(path + "/below").code, PDF_CODE::NOT_FOUND);
    EXPECT_EQ(document.open("/tmp").code, PDF_CODE::IO);
    EXPECT_EQ(document.open("/tmp").text, "this is a folder, not a file");
    EXPECT_TRUE(open_text(document, form).ok());
    EXPECT_EQ(value_of(document, "a"), "old");
}

TEST(CPDFDocumentTest, ADocumentWithoutAFormHasAnEmptyOne)
{
    const struct {
        const char* catalog;
        bool has_form;
    } cases[] = {
        {"<</Type/Catalog>>", false},   {"<</AcroForm null>>", false}, {"<</AcroForm<<>>>>", true},
        {"<</AcroForm 90 0 R>>", true}, {"<</AcroForm[]>>", true},     {"<</AcroForm<</Fields 5>>>>", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.catalog);
        CPDFDocument document;
        const std::string text = PdfBuilder().object(1, c.catalog).table().text;
        ASSERT_TRUE(open_text(document, text).ok());
        EXPECT_EQ(document.has_form(), c.has_form);
        int fields = 0;
        for_each_field(document.form(), [&fields](CPDFField&) { ++fields; });
        EXPECT_EQ(fields, 0);
        EXPECT_FALSE(document.field("a"));
        EXPECT_FALSE(document.field(""));
        EXPECT_EQ(saved(document), text);
    }
}

TEST(CPDFDocumentTest, FieldsByNameAsStoredThenWithoutIndices)
{
    CPDFDocument document;
    ASSERT_TRUE(open_text(document, PdfBuilder()
                                        .form({"<</T(form[0])/Kids[20 0 R 21 0 R]>>", "<</T(form)/Kids[22 0 R]>>",
                                               "<</FT/Tx/T<FEFF00E4D83DDE00>/V(utf-16)>>", "<</FT/Tx/T(a.b)/V(dot)>>"})
                                        .object(20, "<</FT/Tx/T(city[0])/V(first)/Parent 10 0 R>>")
                                        .object(21, "<</FT/Tx/T(city[1])/V(second)/Parent 10 0 R>>")
                                        .object(22, "<</FT/Tx/T(zip)/V(third)/Parent 11 0 R>>")
                                        .table()
                                        .text)
                    .ok());
    const struct {
        const char* name;
        const char* value;
    } cases[] = {
        {"form[0].city[1]", "second"},
        {"form.city", "first"},
        {"form.zip", "third"},
        {"form[0].city", "no field"},
        {"\xC3\xA4\xF0\x9F\x98\x80", "utf-16"},
        {"a.b", "dot"},
        {"form[0]", "no value"},
        {"zip", "no field"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(value_of(document, c.name), c.value);
    }
    document.field("form.zip")->set_name(L"post");
    document.fields_changed();
    EXPECT_EQ(value_of(document, "form.post"), "third");
    EXPECT_EQ(value_of(document, "form.zip"), "no field");
}

TEST(CPDFDocumentTest, SetValueRefusesByNameAndChangesNothing)
{
    const std::string parent = "<</FT/Tx/T(p)/MaxLen 3/Kids[20 0 R]>>";
    const std::string kid = "<</T(k)/V(old)/Parent 10 0 R>>";
    const struct {
        const char* label;
        std::string field;
        std::string kid;
        const char* name;
        const char* value;
        PDF_CODE code;
    } cases[] = {
        {"push button", "<</FT/Btn/Ff 65536/T(a)>>", "", "a", "x", PDF_CODE::WRONG_KIND},
        {"signature", "<</FT/Sig/T(a)>>", "", "a", "x", PDF_CODE::WRONG_KIND},
        {"no kind", "<</T(a)>>", "", "a", "x", PDF_CODE::WRONG_KIND},
        {"read-only", "<</FT/Tx/T(a)/Ff 1>>", "", "a", "x", PDF_CODE::READ_ONLY},
        {"too long", "<</FT/Tx/T(a)/MaxLen 3>>", "", "a", "four", PDF_CODE::LIMIT},
        {"inherited maximum", parent, kid, "p.k", "four", PDF_CODE::LIMIT},
        {"inherited, at the maximum", parent, kid, "p.k", "\xE2\x82\xAC\xF0\x9F\x98\x80z", PDF_CODE::OK},
        {"own maximum", parent, "<</T(k)/MaxLen 9/Parent 10 0 R>>", "p.k", "four", PDF_CODE::OK},
        {"maximum 0", "<</FT/Tx/T(a)/MaxLen 0>>", "", "a", "four", PDF_CODE::OK},
        {"maximum below 0", "<</FT/Tx/T(a)/MaxLen -5>>", "", "a", "four", PDF_CODE::OK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        PdfBuilder builder;
        const std::string text = builder.form({c.field}).object(20, c.kid.empty() ? "null" : c.kid).table().text;
        CPDFDocument document;
        ASSERT_TRUE(open_text(document, text).ok());
        CPDFField* field = document.field(c.name);
        ASSERT_TRUE(field);
        const CPDFStatus status = document.set_value(*field, c.value);
        EXPECT_EQ(status.code, c.code) << status.text;
        EXPECT_EQ(saved(document) == text, !status.ok());
        EXPECT_EQ(status.text.find("\"" + std::string(c.name) + "\"") == std::string::npos, status.ok()) << status.text;
    }
    CPDFDocument document;
    ASSERT_TRUE(open_text(document, text_form("/Ff 1")).ok());
    EXPECT_TRUE(document.set_value(*document.field("a"), "forced", PDF_FILL::FORCE).ok());
    EXPECT_EQ(value_of(document, "a"), "forced");
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
        {"empty", "", "()", ""},
        {"Latin-1", "Z\xC3\xBCrich", "(Z\xFCrich)", ""},
        {"line ends", "a\r\nb\rc\n\td", "<610D0A620D", ""},
        {"euro", "5 \xE2\x82\xAC", "<FEFF00350020", ""},
        {"emoji", "\xF0\x9F\x98\x80", "<FEFFD83DDE00>", ""},
        {"last character", "\xF4\x8F\xBF\xBF", "<FEFFDBFFDFFF>", ""},
        {"looks like a UTF-16 mark", "\xC3\xBE\xC3\xBF A", "<FEFF00FE00FF", ""},
        {"looks like a UTF-8 mark", "\xC3\xAF\xC2\xBB\xC2\xBF", "<FEFF00EF", ""},
        {"zero inside", std::string("a\0b", 3), "<FEFF006100000062>", ""},
        {"control characters", "\x01\x1F\x7F\xC2\xA0\xC2\xAD", "<FEFF0001001F", ""},
        {"language escape",
         "\x1B"
         "de\x1B"
         "x",
         "<FEFFFFFD",
         "\xEF\xBF\xBD"
         "de\xEF\xBF\xBD"
         "x"},
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
        EXPECT_NE(output.find(std::string("/V") + c.stored, text.size()), std::string::npos)
            << output.substr(text.size());
        CPDFDocument again;
        ASSERT_TRUE(open_text(again, output).ok());
        EXPECT_EQ(value_of(again, "a"), c.read.empty() ? c.value : c.read);
        EXPECT_EQ(value_of(document, "a"), value_of(again, "a"));
    }
}

TEST(CPDFDocumentTest, SavesOverItsOwnInput)
{
    const std::string path = "/tmp/formwork_test_" + std::to_string(::getpid()) + ".pdf";
    std::ofstream(path, std::ios::binary) << text_form();
    CPDFDocument document;
    ASSERT_TRUE(document.open(path).ok());
    for (const char* value : {"one", "two"}) {
        ASSERT_TRUE(document.set_value(*document.field("a"), value).ok());
        ASSERT_TRUE(document.save(path).ok());
        CPDFDocument again;
        ASSERT_TRUE(again.open(path).ok());
        EXPECT_EQ(value_of(again, "a"), value);
    }
    std::filesystem::remove(path);
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

// The sound field is kept whatever else hangs in the tree.
TEST(CPDFDocumentTest, BadTreesKeepTheGoodFields)
{
    PdfBuilder deep;
    PdfBuilder wide;
    std::string kids;
    for (uint32_t i = 0; i < 20000; ++i) {
        const std::string num = std::to_string(101 + i);
        deep.object(100 + i, "<</T(d)/FT/Tx/Kids[" + num + " 0 R]>>");
        wide.object(101 + i, "<</T(w)/FT/Tx/V(" + num + ")>>");
        kids += num + " 0 R ";
    }
    wide.object(100, "<</T(wide)/Kids[" + kids + kids + "]>>");
    const auto tree = [](PdfBuilder builder, const std::string& first) {
        return builder.form({"<</FT/Tx/T(bad)/Kids[" + first + "]>>", "<</FT/Tx/T(good)/V(kept)>>"}).table().text;
    };
    const std::string text[] = {
        tree(deep, "100 0 R"),
        tree(wide, "100 0 R"),
        tree(PdfBuilder(), "10 0 R"),
        tree(PdfBuilder(), "11 0 R 11 0 R null 7 [] <</T(direct)>>"),
        tree(
            PdfBuilder().object(20, "<</T(x)/Parent 20 0 R/Kids[21 0 R]>>").object(21, "<</T(y)/Kids[20 0 R 10 0 R]>>"),
            "20 0 R 21 0 R 20 0 R"),
    };
    for (size_t i = 0; i < std::size(text); ++i) {
        SCOPED_TRACE(i);
        CPDFDocument document;
        ASSERT_TRUE(open_text(document, text[i]).ok());
        CPDFField* good = document.form().find({11, 0});
        ASSERT_TRUE(good);
        EXPECT_EQ(utf8_of(*good->get_edit_value()), "kept");
        ASSERT_TRUE(document.set_value(*good, "new").ok());
        CPDFDocument again;
        ASSERT_TRUE(open_text(again, saved(document)).ok());
        EXPECT_EQ(utf8_of(*again.form().find({11, 0})->get_edit_value()), "new");
    }
    CPDFDocument document;
    ASSERT_TRUE(open_text(document, text[1]).ok());
    EXPECT_EQ(utf8_of(*document.form().find({20100, 0})->get_edit_value()), "20100");
}

TEST(CPDFDocumentTest, ObjectsReadStayInProportionToTheFields)
{
    for (const uint32_t count : {1000, 10000}) {
        PdfBuilder builder;
        std::vector<std::string> groups;
        for (uint32_t first = 20000; first < 20000 + count; first += 50) {
            std::string kids;
            for (uint32_t num = first; num < first + 50; ++num) {
                kids += std::to_string(num) + " 0 R ";
                builder.object(num, "<</FT/Tx/T(f" + std::to_string(num) + ")/V(v)/Parent " +
                                        std::to_string(10 + groups.size()) + " 0 R>>");
            }
            groups.push_back("<</T(g" + std::to_string(groups.size()) + ")/Kids[" + kids + "]>>");
        }
        const std::string& text = builder.form(groups).table().text;
        CountingReader reader(reinterpret_cast<const uint8_t*>(text.data()), text.size());
        CPDFXRefTable xref(&reader);
        ASSERT_TRUE(reader.start(xref).ok());
        CPDFObj root;
        xref.get_entity(root, {1, 0});
        CPDFAcroForm form;
        form.load(&xref, root.dict->get_item("AcroForm"), &root, {1, 0});
        size_t loaded = 0;
        for_each_field(form, [&loaded](CPDFField& field) { loaded += field.m_type == FIELD_TEXT; });
        EXPECT_EQ(loaded, count);
        EXPECT_LE(reader.reads, count + groups.size() + 8);
    }
}
