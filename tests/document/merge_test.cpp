// Documents appended to others: where fields go, what comes along, and what is refused.

#include <gmock/gmock.h>

#include "core/array.h"
#include "document/edit/new_object.h"
#include "document/lookup/page_map.h"
#include "forms/field_kind.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {

// Catalog entries, entries of the page tree and of the one page, and objects from 10 on.
std::string pdf_with(const std::string& catalog, const std::string& objects, const std::string& page = "",
                     const std::string& pages = "")
{
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R" + catalog + ">>");
    file.object(2, "<</Type/Pages/Kids[3 0 R]/Count 1" + pages + ">>");
    file.object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]" + page + ">>").stream(4, "", "");
    return put_objects(file, 10, objects).table().text;
}

// A form whose fields are the objects from 11 on; those with a rectangle are on the page.
std::string form_with(const std::string& fields, const std::string& top, const std::string& form = "")
{
    std::string annotations;
    uint32_t num = 11;
    for (const std::string& field : split(fields, ';')) {
        if (field.find("/Rect") != std::string::npos)
            annotations += std::to_string(num) + " 0 R ";
        ++num;
    }
    return pdf_with("/AcroForm 10 0 R", "/Fields[" + top + "]" + form + ";" + fields, "/Annots[" + annotations + "]");
}

std::string text_field(const std::string& name, const std::string& more = "")
{
    return "/T(" + name + ")/FT/Tx/Subtype/Widget/Rect[10 10 90 30]/DA(/F 9 Tf)/AP<</N 4 0 R>>" + more;
}

// Full names, kinds, values and numbers of widgets in tree order.
std::string tree_of(CPDFDocument& document)
{
    std::string text;
    CPDFNumberedNames names(document.form());
    for_each_field(document.form(), [&](CPDFField& field) {
        if (field.m_name.len > 0)
            text += names.name_of(field) + ":" + field_kind(field).name + show_object(field.m_value) +
                    std::to_string(document.widgets_of(field).size()) + " ";
    });
    return text;
}

CPDFStatus merge(FormAtWork& a, FormAtWork& b, PDF_SAME_NAMES names = PDF_SAME_NAMES::REFUSE,
                 PDF_EDIT edit = PDF_EDIT::RESPECT_SIGNATURES)
{
    return a.document.append(b.document, names, edit);
}

// Everything the catalog, or what lies under it on this path, leads to.
std::string shown(CPDFDocument& document, const std::string& path)
{
    CPDFObj at;
    at.copy_from(&document.root());
    for (const std::string& key : split(path, '.')) {
        CPDFObj next;
        const bool index = at.array() != nullptr;
        resolve_obj(&document.xref(),
                    index                 ? at.arr->at(std::stoi(key))
                    : at.any_dictionary() ? at.any_dictionary()->get_item(key.c_str())
                                          : nullptr,
                    next);
        at.take(next);
    }
    return show_object(at);
}

}  // namespace

TEST(MergeTest, FieldsGoWhereTheirNamesLead)
{
    const std::string plain = form_with(text_field("a", "/V(1)") + ";" + text_field("b"), "11 0 R 12 0 R");
    const std::string group =
        form_with("/T(g)/FT/Tx/Ff 2/Kids[12 0 R];/T(a)/Parent 11 0 R/Subtype/Widget/Rect[0 0 9 9]", "11 0 R");
    const std::string other_group =
        form_with("/T(g)/Kids[12 0 R];/T(x)/FT/Btn/Parent 11 0 R/Subtype/Widget/Rect[0 0 9 9]", "11 0 R");
    const std::string check = "/T(a)/FT/Btn/Rect[0 0 9 9]" + widget_states("On");
    constexpr auto REFUSE = PDF_SAME_NAMES::REFUSE;
    constexpr auto RENAME = PDF_SAME_NAMES::RENAME;
    constexpr auto JOIN = PDF_SAME_NAMES::JOIN;
    const struct {
        const char* label;
        std::string a, b;
        PDF_SAME_NAMES names;
        const char* result;  // the tree, or a part of the refusal
    } cases[] = {
        {"none in common", plain, form_with(text_field("c", "/V(2)"), "11 0 R"), REFUSE,
         "a:text(1)1 b:textnull1 c:text(2)1 "},
        {"no form before", pdf_with("", ""), plain, REFUSE, "a:text(1)1 b:textnull1 "},
        {"no form behind", plain, pdf_with("", ""), REFUSE, "a:text(1)1 b:textnull1 "},
        {"refused", plain, plain, REFUSE, "field \"a\" stands in both documents (the first of 2 such fields)"},
        {"renamed", plain, plain, RENAME, "a:text(1)1 b:textnull1 a_2:text(1)1 b_2:textnull1 "},
        {"renamed before an index", form_with(text_field("f[0]"), "11 0 R"), form_with(text_field("f[0]"), "11 0 R"),
         RENAME, "f[0]:textnull1 f_2[0]:textnull1 "},
        {"the next number", form_with(text_field("a") + ";" + text_field("a_2"), "11 0 R 12 0 R"), plain, RENAME,
         "a:textnull1 a_2:textnull1 a_3:text(1)1 b:textnull1 "},
        {"joined", plain, plain, JOIN, "a:text(1)2 b:textnull2 "},
        {"the value of the second", form_with(text_field("a"), "11 0 R"), plain, JOIN, "a:text(1)2 b:textnull1 "},
        {"values contradict", plain, form_with(text_field("a", "/V(2)"), "11 0 R"), JOIN,
         "field \"a\" can't be joined: its values are \"1\" and \"2\""},
        {"too long", form_with(text_field("a", "/MaxLen 1"), "11 0 R"), form_with(text_field("a", "/V(22)"), "11 0 R"),
         JOIN, "at most 1"},
        {"kinds differ", plain, form_with(check, "11 0 R"), JOIN,
         "it is a text field in one document and a check box in the other"},
        {"boxes", form_with(check, "11 0 R"), form_with(check + "/V/On", "11 0 R"), JOIN, "a:check/On2 "},
        {"states differ", form_with(check, "11 0 R"),
         form_with("/T(a)/FT/Btn/Rect[0 0 9 9]" + widget_states("Yes"), "11 0 R"), JOIN, "its states differ"},
        {"groups come together", group, other_group, REFUSE, "g:textnull0 g.a:textnull1 g.x:checknull1 "},
        {"and joined in them", group, group, JOIN, "g:textnull0 g.a:textnull2 "},
        {"a field against a group", group, form_with(text_field("g"), "11 0 R"), JOIN, "it is a group in one"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormAtWork a(c.a);
        FormAtWork b(c.b);
        const std::string before = tree_of(a.document);
        const CPDFStatus status = merge(a, b, c.names);
        if (!status.ok()) {
            EXPECT_THAT(status.text, testing::HasSubstr(c.result));
            EXPECT_EQ(tree_of(a.document), before);
            continue;
        }
        EXPECT_EQ(tree_of(a.document), c.result);
        FormAtWork again(a.saved());
        EXPECT_EQ(tree_of(again.document), tree_of(a.document));
        EXPECT_EQ(shown(again.document, "Pages.Count"), "2");
    }
}

TEST(MergeTest, WhatAFieldInheritsStaysItsOwn)
{
    FormAtWork a(form_with("/T(g)/FT/Tx/Ff 2/MaxLen 3/Kids[12 0 R];" + text_field("a", "/Parent 11 0 R"), "11 0 R",
                           "/DA(/F 5 Tf)/Q 1/DR<</Font<</F 4 0 R>>>>"));
    FormAtWork b(
        form_with("/T(g)/FT/Ch/Ff 131072/Opt[(x)]/Kids[12 0 R];/T(b)/Parent 11 0 R/Subtype/Widget/Rect[0 0 9 9]",
                  "11 0 R", "/DA(/F 7 Tf)/CO[12 0 R]/DR<</Font<</F<</Type/Font>>>>>>"));
    ASSERT_TRUE(merge(a, b).ok());
    FormAtWork again(a.saved());
    const uint32_t num = again.field("g.b").m_ref.num;
    EXPECT_EQ(again.entry(num, "FT") + again.entry(num, "Ff") + again.entry(num, "Opt") + again.entry(num, "DA") +
                  again.entry(num, "Q"),
              "/Ch131072[(x)](/F_2 7 Tf)0");
    EXPECT_EQ(shown(again.document, "AcroForm.DR.Font.F_2"), "<< /Type /Font >>");
    EXPECT_EQ(shown(again.document, "AcroForm.CO"), "[" + std::to_string(num) + " 0 R]");
}

TEST(MergeTest, WhatLeadsToPagesComesAlong)
{
    const std::string catalog = "/Outlines 10 0 R/PageLabels<</Nums[0<</S/r>>]>>/Names<</Dests 12 0 R>>/Dests 13 0 R"
                                "/StructTreeRoot 14 0 R/OCProperties<</OCGs[15 0 R]/D<</OFF[15 0 R]>>>>";
    const std::string objects = "/First 11 0 R/Last 11 0 R/Count 1;/Title(t)/Parent 10 0 R/Dest(d)/SE 14 0 R;"
                                "/Names[(d)[3 0 R/Fit]];/d[3 0 R/Fit];/Type/StructTreeRoot;/Type/OCG";
    const std::string page = "/StructParents 0/Annots[<</Subtype/Link/A<</S/GoTo/D/d>>>>]";
    FormAtWork a(pdf_with(catalog, objects, page, "/Rotate 90"));
    FormAtWork b(pdf_with(catalog, objects, page));
    std::vector<std::string> notes;
    ASSERT_TRUE(a.document.append(b.document, PDF_SAME_NAMES::REFUSE, PDF_EDIT::RESPECT_SIGNATURES, &notes).ok());
    EXPECT_THAT(notes, testing::ElementsAre(testing::HasSubstr("structure")));
    FormAtWork again(a.saved());
    CPDFPageMap pages;
    pages.load(again.document.xref(), again.document.root());
    ASSERT_EQ(pages.page_count(), 2);
    const std::string second = ref_syntax(pages.page_ref(2));
    const struct {
        const char* path;
        std::string value;
    } cases[] = {
        {"Outlines.Count", "2"},
        {"Outlines.First.Next.Dest", "(d_2)"},
        {"Outlines.First.Next.SE", "null"},
        {"Outlines.Last.Prev.Dest", "(d)"},
        {"Names.Dests.Names", "[(d) [3 0 R /Fit] (d_2) [" + second + " /Fit]]"},
        {"Dests.d_2", "[" + second + " /Fit]"},
        {"PageLabels.Nums", "[0 << /S /r >> 1 << /S /r >>]"},
        {"Pages.Kids.0.Rotate", "90"},  // stays with the first: a new node is above both
        {"Pages.Kids.1.Rotate", "null"},
        {"Pages.Kids.1.Kids.0.Annots.0.A.D", "/d_2"},
        {"Pages.Kids.1.Kids.0.StructParents", "null"},
        {"Pages.Kids.0.Kids.0.StructParents", "0"},
        {"OCProperties.D.OFF.1", "<< /Type /OCG >>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shown(again.document, c.path), c.value) << c.path;
}

TEST(MergeTest, JoinedWidgetsShowTheValue)
{
    FormAtWork a(form_with(text_field("a", "/V(new)/AA<</K 4 0 R/E 4 0 R>>"), "11 0 R", "/CO[11 0 R]"));
    FormAtWork b(form_with(text_field("a", "/TU(b)/AA<</K 4 0 R>>"), "11 0 R", "/CO[11 0 R]"));
    ASSERT_TRUE(merge(a, b, PDF_SAME_NAMES::JOIN).ok());
    FormAtWork again(a.saved());
    const CPDFField& field = again.field("a");
    const std::string num = std::to_string(field.m_ref.num) + " 0 R";
    EXPECT_EQ(shown(again.document, "AcroForm.Fields") + shown(again.document, "AcroForm.CO"),
              "[" + num + "][" + num + "]");
    EXPECT_EQ(again.entry(field.m_ref.num, "AA") + again.entry(11, "AA"), "<< /K 4 0 R >><< /E 4 0 R >>");
    for (const CPDFAnnotWidget* widget : again.document.widgets_of(field)) {
        const uint32_t at = widget->m_ref.num;
        EXPECT_EQ(again.entry(at, "Parent") + again.entry(at, "T") + again.entry(at, "TU"), num + "--");
        CPDFObj picture;
        again.document.xref().get_entity(picture, widget->m_ref);
        const CPDFEntryView looks(&again.document.xref(), picture.dict->get_item("AP"));
        const CPDFObj* stream = looks->dictionary() ? looks->dict->get_item("N") : nullptr;
        ASSERT_TRUE(stream && stream->type == PDF_OBJ_REF);
        EXPECT_THAT(stream_data(again.document.xref(), stream->ref.num), testing::HasSubstr("(new)"));
    }
}

TEST(MergeTest, SignedAndHostileFilesAreRefused)
{
    const std::string plain = form_with(text_field("a"), "11 0 R");
    const std::string signed_form =
        form_with("/T(s)/FT/Sig/Subtype/Widget/Rect[0 0 0 0]/V<</ByteRange[0 1 2 3]/Contents<00>>>", "11 0 R");
    // Streams that each say to be as long as the file.
    PdfBuilder overlapping;
    overlapping.object(1, "<</Pages 2 0 R>>").object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
    overlapping.object(3, "<</Type/Page/Parent 2 0 R/Contents[10 0 R 11 0 R 12 0 R 13 0 R]>>");
    for (uint32_t num = 10; num < 14; ++num)
        overlapping.stream(num, "/Length " + std::to_string(4000 - 90 * (num - 10)),
                           num == 13 ? std::string(4000, ' ') : "");
    const struct {
        std::string a, b;
        const char* part;
    } cases[] = {{signed_form, plain, "is signed"},
                 {plain, signed_form, "is signed"},
                 {plain, overlapping.table().text, "overlap"}};
    for (const auto& c : cases) {
        FormAtWork a(c.a);
        FormAtWork b(c.b);
        EXPECT_THAT(merge(a, b).text, testing::HasSubstr(c.part));
        a.document.revert();
        EXPECT_TRUE(merge(a, a).code == PDF_CODE::BAD_REQUEST);
    }
    FormAtWork a(signed_form);
    FormAtWork b(plain);
    EXPECT_TRUE(merge(a, b, PDF_SAME_NAMES::REFUSE, PDF_EDIT::FORCE).ok());
}

TEST(MergeTest, MemoryRunsOut)
{
    const std::string file = form_with(text_field("a", "/V(1)"), "11 0 R", "/CO[11 0 R]/DR<</Font<</F 4 0 R>>>>");
    each_failed_allocation([&](const auto& arm) {
        FormAtWork a(file);
        FormAtWork b(file);
        CPDFStatus status;
        const bool failed = arm([&] { status = merge(a, b, PDF_SAME_NAMES::RENAME); });
        EXPECT_EQ(status.code, failed ? PDF_CODE::NO_MEMORY : PDF_CODE::OK) << status.text;
    });
}

// Every real file behind itself: twice the pages, and every field that shows something twice.
class MergeCorpusTest : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Corpus, MergeCorpusTest, testing::ValuesIn(corpus_sample()), file_label);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MergeCorpusTest);

TEST_P(MergeCorpusTest, BehindItself)
{
    CPDFDocument document;
    CPDFDocument other;
    if (!document.open(GetParam()).ok() || !other.open(GetParam()).ok())
        GTEST_SKIP() << "no form that can be read";
    const auto widgets_of = [](CPDFDocument& at) {
        size_t widgets = 0;
        for_each_field(at.form(), [&](CPDFField& field) { widgets += at.widgets_of(field).size(); });
        return widgets;
    };
    CPDFPageMap pages;
    pages.load(document.xref(), document.root());
    const int32_t page_count = pages.page_count();
    const size_t widgets = widgets_of(document);
    const CPDFStatus status = document.append(other, PDF_SAME_NAMES::RENAME, PDF_EDIT::FORCE);
    if (page_count == 0) {
        EXPECT_FALSE(status.ok());
        return;
    }
    ASSERT_TRUE(status.ok()) << status.text;
    std::vector<uint8_t> saved;
    ASSERT_TRUE(document.save(saved).ok());
    ASSERT_TRUE(document.open(saved).ok());
    EXPECT_EQ(document.rescue_note(), "");
    pages.load(document.xref(), document.root());
    EXPECT_EQ(pages.page_count(), 2 * page_count);
    EXPECT_EQ(widgets_of(document), 2 * widgets);
}
