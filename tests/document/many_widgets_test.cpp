// Fields with many neighbours: what takes long to read of them, such as a list of thousands, is read a few times in an edit, not
// once for each. These dictionaries are padded here: an edit that reads them for each field is refused for its work.

#include <gmock/gmock.h>

#include "document/edit/new_object.h"
#include "tests/document/fill_fixture.h"

namespace {

constexpr uint32_t COUNT = 300;
constexpr uint32_t FIRST = 20;                // the widgets
constexpr uint32_t ELEMENTS = FIRST + COUNT;  // of the structure, one for each

constexpr uint32_t SHARED[] = {3, 4, 6, 7, 8, 9};  // pages, structure root, top element, parent tree and group

std::string references(uint32_t first)
{
    std::string text;
    for (uint32_t i = 0; i < COUNT; ++i)
        text += ref_syntax({first + i, 0}) + " ";
    return text;
}

// Two pages and a field "g"; its widgets, with these entries, are on the first page, and in the structure of a tagged document.
// `padded` is one of SHARED.
std::string form_with(uint32_t padded, const std::string& field, const std::string& entries)
{
    const auto pad = [padded](uint32_t num) {
        return num == padded ? "/Pad(" + std::string(500000, 'p') + ")" : std::string();
    };
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R/AcroForm<</Fields[9 0 R]>>/StructTreeRoot 6 0 R>>");
    file.object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2/MediaBox[0 0 200 200]>>");
    file.object(3, "<</Type/Page/Parent 2 0 R/Annots[" + references(FIRST) + "]" + pad(3) + ">>");
    file.object(4, "<</Type/Page/Parent 2 0 R" + pad(4) + ">>");
    file.object(6, "<</Type/StructTreeRoot/K 7 0 R/ParentTree 8 0 R" + pad(6) + ">>");
    file.object(7, "<</S/Document/P 6 0 R/K[" + references(ELEMENTS) + "]" + pad(7) + ">>");
    file.object(9, "<</T(g)" + field + "/Kids[" + references(FIRST) + "]" + pad(9) + ">>");
    std::string numbers;
    for (uint32_t i = 0; i < COUNT; ++i) {
        const std::string num = std::to_string(i);
        const std::string element = ref_syntax({ELEMENTS + i, 0});
        numbers += num + " " + element + " ";
        file.object(FIRST + i, "<</Subtype/Widget/Rect[1 1 9 9]/Parent 9 0 R/StructParent " + num + entries +
                                   (field.empty() ? "/T(f" + num + ")" : "") + ">>");
        file.object(ELEMENTS + i,
                    "<</S/Form/P 7 0 R/Pg 3 0 R/K<</Type/OBJR/Obj " + ref_syntax({FIRST + i, 0}) + ">>>>");
    }
    return file.object(8, "<</Nums[" + numbers + "]" + pad(8) + ">>").table().text;
}

std::vector<CPDFField*> leaves(FormAtWork& f)
{
    std::vector<CPDFField*> fields;
    for_each_field(f.document.form(), [&](CPDFField& field) {
        if (field.m_kid_cnt == 0)
            fields.push_back(&field);
    });
    return fields;
}

}  // namespace

TEST(ManyWidgetsTest, DesignsReadWhatIsAboveOnce)
{
    for (const uint32_t padded : SHARED) {
        SCOPED_TRACE(padded);
        FormAtWork f(form_with(padded, "", "/FT/Tx"));
        PDF_FIELD_DESIGN design;
        design.label = "label";
        design.style.color = {1, 0, 0};
        design.format = {"k", "f"};
        const CPDFStatus status = f.document.design_fields(leaves(f), design);
        ASSERT_TRUE(status.ok()) << status.text;
        for (const uint32_t at : {0u, COUNT - 1}) {
            EXPECT_EQ(f.entry(ELEMENTS + at, "Alt") + f.entry(FIRST + at, "TU"), "(label)(label)");
            EXPECT_EQ(f.entry(FIRST + at, "DA"), "(/Helv 0 Tf 1 0 0 rg)");
            EXPECT_THAT(f.entry(FIRST + at, "AA"), testing::HasSubstr("(k)"));
        }
    }
}

TEST(ManyWidgetsTest, AGroupGoesInOnePass)
{
    for (const uint32_t padded : SHARED) {
        SCOPED_TRACE(padded);
        FormAtWork f(form_with(padded, "", "/FT/Tx"));
        const CPDFStatus status = f.document.remove_field(f.field("g"));
        ASSERT_TRUE(status.ok()) << status.text;
        EXPECT_EQ(f.entry(3, "Annots") + f.entry(7, "K") + f.entry(8, "Nums"), "[][][]");
    }
}

TEST(ManyWidgetsTest, RadioButtonsAreCopiedAndMovedInOnePass)
{
    for (const uint32_t padded : SHARED) {
        SCOPED_TRACE(padded);
        FormAtWork f(form_with(padded, "/FT/Btn/Ff 32768", "/AS/Off/AP<</N<</on<<>>/Off<<>>>>>>"));
        PDF_MOVE move;
        move.page = 2;
        CPDFField* copy = nullptr;
        CPDFStatus status = f.document.copy_field(f.field("g"), "c", move, PDF_EDIT::RESPECT_SIGNATURES, &copy);
        ASSERT_TRUE(status.ok()) << status.text;
        const PDF_REF last = f.document.widgets_of(*copy).back()->m_ref;
        EXPECT_EQ(f.document.widgets_of(*copy).size(), COUNT);
        EXPECT_THAT(f.entry(4, "Annots"), testing::EndsWith(" " + ref_syntax(last) + "]"));
        EXPECT_EQ(f.entry(last.num, "StructParent") + " " + f.entry(6, "ParentTreeNextKey"),
                  std::to_string(2 * COUNT - 1) + " " + std::to_string(2 * COUNT));
        status = f.document.move_widgets(f.field("g"), move);
        ASSERT_TRUE(status.ok()) << status.text;
        EXPECT_EQ(f.entry(3, "Annots"), "[]");
        EXPECT_THAT(f.entry(4, "Annots"), testing::EndsWith(" " + ref_syntax({FIRST + COUNT - 1, 0}) + "]"));
        EXPECT_EQ(f.entry(ELEMENTS + COUNT - 1, "Pg") + f.entry(FIRST, "StructParent"), "4 0 R0") << "where it was";
    }
}

TEST(ManyWidgetsTest, TooMuchWorkIsCalledThat)
{
    PdfBuilder file;
    const std::vector<std::string> fields(COUNT, "<</FT/Tx/T(t)/Border 9 0 R/Subtype/Widget/Rect[1 1 9 9]>>");
    FormAtWork f(file.form(fields).object(9, "[0 0 1(" + std::string(500000, 'p') + ")]").table().text);
    PDF_FIELD_DESIGN design;
    design.style.border_width = 1;
    EXPECT_EQ(f.document.design_fields(leaves(f), design).text,
              "it takes more work than the file's size justifies to change the form");
}

// New elements stand behind those of their pages and of the pages before.
TEST(ManyWidgetsTest, NewElementsAreSortedByPage)
{
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R/AcroForm<</Fields[]>>/StructTreeRoot 6 0 R>>");
    file.object(2, "<</Type/Pages/Kids[3 0 R 4 0 R 5 0 R]/Count 3/MediaBox[0 0 200 200]>>");
    put_objects(file, 3, "/Type/Page/Parent 2 0 R;/Type/Page/Parent 2 0 R;/Type/Page/Parent 2 0 R;/K 7 0 R");
    put_objects(file, 7, "/S/Document/P 6 0 R/K[8 0 R 9 0 R 10 0 R];/S/P/Pg 3 0 R;/S/P;/S/P/Pg 4 0 R");
    FormAtWork f(file.table().text);
    PDF_NEW_FIELD field;
    field.name = "t";
    const PDF_RECT rect = {1, 1, 9, 9};
    field.places = {{rect, 3}, {rect, 1}, {rect, 2}, {rect, 1}};
    ASSERT_TRUE(f.document.add_field(field).ok());
    std::vector<std::string> pages;
    CPDFObj element;
    f.document.xref().get_entity(element, {7, 0});
    const CPDFArray* kids = element.dict->get_item("K")->array();
    pages.reserve(static_cast<size_t>(kids->count));
    for (int32_t i = 0; i < kids->count; ++i)
        pages.push_back(f.entry(kids->at(i)->ref.num, "Pg"));
    EXPECT_THAT(pages, testing::ElementsAre("3 0 R", "3 0 R", "3 0 R", "-", "4 0 R", "4 0 R", "5 0 R"));
}
