// What a designer changes in a form, as its dictionaries then say it, where the command does not show it.

#include <gmock/gmock.h>

#include "document/edit/new_object.h"
#include "forms/field_kind.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {

constexpr const char* PAGE = "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]";

// A catalog with these entries, one page with these, and objects from 10 on.
std::string pdf_with(const std::string& catalog, const std::string& page, const std::string& objects,
                     const std::string& pages = "[3 0 R]/Count 1")
{
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R" + catalog + ">>").object(2, "<</Type/Pages/Kids" + pages + ">>");
    file.object(3, PAGE + page + ">>");
    return put_objects(file, 10, objects).table().text;
}

// A tagged page with two widgets: of "t" in a form element of its own, of "u" in a paragraph beside text.
std::string tagged_form(const std::string& parent_tree, const std::string& nodes = "null",
                        const std::string& pages = "[3 0 R]/Count 1")
{
    return pdf_with("/AcroForm<</Fields[10 0 R 11 0 R]>>/StructTreeRoot 12 0 R",
                    "/Annots[10 0 R 11 0 R]/StructParents 0",
                    "/T(t)/FT/Tx/Subtype/Widget/Rect[1 1 9 9]/StructParent 1;"
                    "/T(u)/FT/Tx/Subtype/Widget/Rect[11 1 19 9]/StructParent 2;"
                    "/K[13 0 R]/ParentTree" +
                        parent_tree +
                        ";/S/Document/P 12 0 R/K[14 0 R 15 0 R];"
                        "/S/Form/P 13 0 R/Pg 3 0 R/K<</Type/OBJR/Obj 10 0 R>>;"
                        "/S/P/P 13 0 R/Pg 3 0 R/K[0<</Type/OBJR/Obj 11 0 R>>];" +
                        nodes,
                    pages);
}

CPDFStatus design(FormAtWork& f, const std::string& name, const PDF_FIELD_DESIGN& design)
{
    CPDFField* const field = &f.field(name);
    return f.document.design_fields({&field, 1}, design);
}

}  // namespace

TEST(DesignTest, WordsOfFormatsAndCalculations)
{
    const struct {
        const char* words;
        const char* keystroke;
        const char* format;
    } cases[] = {
        {"number:2", "AFNumber_Keystroke(2, 0, 0, 0, \"\", true);", "AFNumber_Format(2, 0, 0, 0, \"\", true);"},
        {"number:0:1'234.56 Fr.", "AFNumber_Keystroke(0, 4, 0, 0, \" Fr.\", false);",
         "AFNumber_Format(0, 4, 0, 0, \" Fr.\", false);"},
        {"percent:1:1234,56", "AFPercent_Keystroke(1, 3);", "AFPercent_Format(1, 3);"},
        {"time:HH:MM", "AFTime_KeystrokeEx(\"HH:MM\");", "AFTime_FormatEx(\"HH:MM\");"},
        {"special:ssn", "AFSpecial_Keystroke(3);", "AFSpecial_Format(3);"},
        {"mask:9\"9", "AFSpecial_KeystrokeEx(\"9\\\"9\");", ""},
        {"none", "", ""},
    };
    PDF_FIELD_FORMAT format;
    for (const auto& c : cases) {
        EXPECT_TRUE(read_format(c.words, format)) << c.words;
        EXPECT_EQ(format.keystroke, c.keystroke);
        EXPECT_EQ(format.format, c.format);
    }
    for (const char* wrong : {"", "number", "number:x", "number:2:$1,234.56 €", "number:2:1.2", "percent:1:$1234.56",
                              "date:", "special:x", "money:2"})
        EXPECT_FALSE(read_format(wrong, format)) << wrong;
    PDF_CALCULATION calculation;
    for (const char* wrong : {"", "sum", "sum:", "sum:a,,b", "plus:a"})
        EXPECT_FALSE(read_calculation(wrong, calculation)) << wrong;
    EXPECT_TRUE(read_calculation("average:a,b c", calculation));
    EXPECT_EQ(calculation_script(calculation.function, calculation.fields),
              "AFSimple_Calculate(\"AVG\", new Array(\"a\", \"b c\"));");
}

TEST(DesignTest, StylesKeepWhatTheyDoNotSay)
{
    FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R]/DA(/F 9 Tf 1 0 0 rg 50 Tz)>>", "/Annots[11 0 R 12 0 R]",
                          "/T(t)/FT/Tx/Kids[11 0 R 12 0 R];/Parent 10 0 R/Subtype/Widget/Rect[1 1 9 9]/MK<</R 90>>/Q 2;"
                          "/Parent 10 0 R/Subtype/Widget/Rect[1 1 9 9]/DA(/G 5 Tf)/Border[0 0 3]"));
    PDF_FIELD_DESIGN change;
    change.style.size = 12;
    change.style.alignment = PDF_ALIGNMENT::CENTER;
    change.style.background = PDF_FIELD_COLOR{1};
    change.style.border_color = PDF_FIELD_COLOR();
    change.style.border_style = PDF_BORDER_STYLE::DASHED;
    ASSERT_TRUE(design(f, "t", change).ok());
    EXPECT_EQ(f.entry(10, "DA") + f.entry(10, "Q"), "(/F 12 Tf 1 0 0 rg 50 Tz)1");
    EXPECT_EQ(f.entry(11, "DA") + f.entry(11, "Q") + f.entry(11, "MK"), "--<< /BG [1] /R 90 >>");
    EXPECT_EQ(f.entry(12, "DA") + f.entry(12, "BS"), "(/G 12 Tf 0 g)<< /S /D /W 3 >>");
}

TEST(DesignTest, CalculatedFieldsComeAndGo)
{
    FormAtWork f(pdf_with("/AcroForm 10 0 R", "",
                          "/Fields[11 0 R 12 0 R];/T(a)/FT/Tx/V(2);/T(s)/FT/Tx/AA<</V<</S/JavaScript/JS(v)>>>>"));
    PDF_FIELD_DESIGN change;
    change.calculation = {"SUM", {"a*"}};
    ASSERT_TRUE(design(f, "s", change).ok());
    ASSERT_TRUE(f.document.set_value(f.field("a"), "3").ok());
    EXPECT_EQ(f.entry(12, "V") + f.entry(10, "CO"), "(3)[12 0 R]");
    change.calculation.emplace();
    ASSERT_TRUE(design(f, "s", change).ok());
    EXPECT_EQ(f.entry(12, "AA") + f.entry(10, "CO"), "<< /V << /JS (v) /S /JavaScript >> >>[]");
}

// A total of totals comes after what it sums, whichever was made first.
TEST(DesignTest, CalculationsComeBehindTheirSources)
{
    FormAtWork f(pdf_with("/AcroForm 10 0 R", "",
                          "/Fields[11 0 R 12 0 R 13 0 R 14 0 R]/CO[99 0 R];/T(a)/FT/Tx/V(2);/T(s)/FT/Tx/V(1);"
                          "/T(t)/FT/Tx;/T(g)/Kids[15 0 R 16 0 R];/T(x)/FT/Tx/Parent 14 0 R;/T(y)/FT/Tx/Parent 14 0 R"));
    const auto calculate = [&](const char* name, const std::vector<std::string>& from) {
        PDF_FIELD_DESIGN change;
        change.calculation = {"SUM", from};
        return design(f, name, change).text;
    };
    EXPECT_EQ(calculate("t", {"s", "g"}), "");
    EXPECT_EQ(calculate("g.y", {"s"}), "");
    EXPECT_EQ(calculate("s", {"a"}), "");
    EXPECT_EQ(f.entry(10, "CO"), "[99 0 R 12 0 R 16 0 R 13 0 R]");
    ASSERT_TRUE(f.document.set_value(f.field("a"), "3").ok());
    EXPECT_EQ(f.entry(13, "V"), "(6)");
    const std::string refused = " can't be calculated from ";
    EXPECT_EQ(calculate("a", {"t"}), "field \"a\"" + refused + "field \"t\", which is calculated from it");
    EXPECT_EQ(calculate("s", {"a", "g.y"}), "field \"s\"" + refused + "field \"g.y\", which is calculated from it");
    EXPECT_EQ(calculate("g.x", {"g"}), "field \"g.x\"" + refused + "itself");
    EXPECT_EQ(calculate("g.x", {"tt"}),
              "field \"g.x\" can't be calculated: there is no field \"tt\": did you mean \"t\"?");
    EXPECT_EQ(f.entry(11, "AA") + f.entry(15, "AA"), "--");
    EXPECT_EQ(f.entry(10, "CO"), "[99 0 R 12 0 R 16 0 R 13 0 R]");
}

// The icon of a button is a drawing of its own: a new look must not lose it.
TEST(DesignTest, ButtonsKeepTheirIcons)
{
    FormAtWork f(
        pdf_with("/AcroForm<</Fields[10 0 R 11 0 R]>>", "/Annots[10 0 R 11 0 R]",
                 "/T(icon)/FT/Btn/Ff 65536/Subtype/Widget/Rect[1 1 40 20]/MK 12 0 R/AP<</N 13 0 R>>;"
                 "/T(plain)/FT/Btn/Ff 65536/Subtype/Widget/Rect[1 1 40 20]/MK<</CA(old)/RC(r)>>/AP<</N 13 0 R>>;"
                 "/CA(old)/I 13 0 R/TP 2/IF<</SW/N>>;null"));
    PDF_FIELD_DESIGN change;
    change.style.background = PDF_FIELD_COLOR{0.5};
    change.style.caption = "new";
    ASSERT_TRUE(design(f, "icon", change).ok());
    ASSERT_TRUE(design(f, "plain", change).ok());
    const std::string out = f.saved();
    EXPECT_EQ(f.entry(10, "MK"), "<< /BG [0.500000] /CA (new) /I 13 0 R /IF << /SW /N >> /TP 2 >>");
    EXPECT_EQ(f.entry(11, "MK"), "<< /BG [0.500000] /CA (new) /RC (r) >>");
    EXPECT_EQ(f.entry(10, "AP"), "<< /N 13 0 R >>");
    EXPECT_NE(f.entry(11, "AP"), "<< /N 13 0 R >>");
    ASSERT_EQ(f.document.drawing_notes().size(), 1u);
    EXPECT_EQ(f.document.drawing_notes()[0], "field \"icon\" shows an icon: its picture stays as it is");
}

TEST(DesignTest, LooksThatDoNotFitAreRefusedByName)
{
    FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R 11 0 R 12 0 R 13 0 R 14 0 R 15 0 R]>>", "",
                          "/T(text)/FT/Tx;/T(box)/FT/Btn;/T(push)/FT/Btn/Ff 65536;/T(sign)/FT/Sig;"
                          "/T(group)/Kids[16 0 R];/T(list)/FT/Ch;/T(in)/FT/Tx/Parent 14 0 R"));
    const struct {
        const char* name;
        void (*set)(PDF_FIELD_DESIGN& design);
        const char* sentence;  // behind the name of the field
    } cases[] = {
        {"sign", [](PDF_FIELD_DESIGN& d) { d.style.size = 9; }, "is a signature field, which has no text"},
        {"sign", [](PDF_FIELD_DESIGN& d) { d.style.caption = "x"; }, "is a signature field, which has no caption"},
        {"group", [](PDF_FIELD_DESIGN& d) { d.style.background.emplace(); },
         "is a group of fields, which has no widgets"},
        {"push", [](PDF_FIELD_DESIGN& d) { d.style.alignment.emplace(); }, "is a push button, which has no alignment"},
        {"box", [](PDF_FIELD_DESIGN& d) { d.style.font = "Times"; }, "is a check box, which has no font"},
        {"box", [](PDF_FIELD_DESIGN& d) { d.action = {"<</S/Named>>"}; }, "is a check box, which has no action"},
        {"list", [](PDF_FIELD_DESIGN& d) { d.format.emplace(); }, "is a list box, which has no format or calculation"},
        {"text", [](PDF_FIELD_DESIGN& d) { d.style.border_width = -1; },
         "can't have a border width of -1: 0 to 1000 points are"},
        {"text", [](PDF_FIELD_DESIGN& d) { d.style.size = 1000.5; },
         "can't have a text size of 1000.5: 0 to 1000 points are"},
        {"text", [](PDF_FIELD_DESIGN& d) { d.style.size = -1, d.style.caption = "x"; },
         "can't have a text size of -1: 0 to 1000 points are; field \"text\" is a text field, which has no caption"},
    };
    for (const auto& c : cases) {
        PDF_FIELD_DESIGN change;
        c.set(change);
        EXPECT_EQ(design(f, c.name, change).text, "field \"" + std::string(c.name) + "\" " + c.sentence);
    }
    PDF_FIELD_DESIGN change;
    change.label = "both or none";
    change.style.alignment = PDF_ALIGNMENT::RIGHT;
    CPDFField* const fields[] = {&f.field("text"), &f.field("box")};
    EXPECT_FALSE(f.document.design_fields(fields, change).ok());
    EXPECT_EQ(f.document.xref().changed_count(), 0);
}

TEST(DesignTest, WidgetsFollowTheFirstAndStandUpright)
{
    const struct {
        const char *from, *to;  // how the pages are turned
        const char* marks;      // of the first widget, which had "R" 90
        const char* second;
    } cases[] = {
        {"0", "0", "<< /R 90 >>", "-"},
        {"0", "90", "<< /R 180 >>", "<< /R 90 >>"},
        {"90", "0", "<< /R 0 >>", "<< /R 270 >>"},
        {"270", "180", "<< /R 0 >>", "<< /R 270 >>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.from) + " " + c.to);
        PdfBuilder file;
        file.object(1, "<</Pages 2 0 R/AcroForm<</Fields[10 0 R]>>>>")
            .object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>")
            .object(3, std::string(PAGE) + "/Annots[11 0 R 12 0 R]/Rotate " + c.from + ">>")
            .object(4, std::string(PAGE) + "/Rotate " + c.to + ">>");
        FormAtWork f(put_objects(file, 10,
                                 "/T(t)/FT/Tx/V(x)/Kids[11 0 R 12 0 R];"
                                 "/Parent 10 0 R/Subtype/Widget/Rect[1 1 21 11]/MK<</R 90>>;"
                                 "/Parent 10 0 R/Subtype/Widget/Rect[31 21 41 31]")
                         .table()
                         .text);
        PDF_MOVE move;
        move.places = {{{51, 41, 20, 10}, 2}};
        ASSERT_TRUE(f.document.move_widgets(f.field("t"), move).ok());
        EXPECT_EQ(f.entry(11, "Rect") + f.entry(12, "Rect"), "[51 41 71 51][81 61 91 71]");
        EXPECT_EQ(f.entry(11, "MK") + f.entry(12, "MK"), std::string(c.marks) + c.second);
        EXPECT_EQ(f.entry(3, "Annots") + f.entry(4, "Annots"), "[][11 0 R 12 0 R]");
    }
}

// With all widgets what refers to them goes; what else is in the structure stays.
TEST(DesignTest, FlatteningKeepsTheStructureInStep)
{
    const struct {
        const char* tree;
        const char* nodes;  // objects 16 and 17
        const char* numbers;
        const char* kids;  // of the root of the parent tree
    } cases[] = {
        {" 16 0 R", "/Nums[0[14 0 R]1 14 0 R 2 15 0 R 3 13 0 R]", "[0 [14 0 R] 3 13 0 R]", "-"},
        {"<</Kids[16 0 R 17 0 R]>>", "/Limits[0 1]/Nums[0[14 0 R]1 14 0 R];/Limits[2 2]/Nums[2 15 0 R]", "[0 [14 0 R]]",
         "[16 0 R]"},
        {"<</Kids[16 0 R 16 0 R]>>", "/Limits[0 9]/Kids[16 0 R]/Nums[0[14 0 R]1 14 0 R 2 15 0 R]", "[0 [14 0 R]]",
         "[16 0 R 16 0 R]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.nodes);
        FormAtWork f(tagged_form(c.tree, c.nodes));
        ASSERT_TRUE(f.document.flatten().ok());
        EXPECT_EQ(f.entry(13, "K") + f.entry(15, "K"), "[15 0 R][0]");
        EXPECT_EQ(f.entry(16, "Nums"), c.numbers);
        const CPDFEntryView root(&f.document.xref(), f.document.root().dict->get_item("StructTreeRoot"));
        const CPDFEntryView tree(&f.document.xref(), root->dict->get_item("ParentTree"));
        const CPDFObj* kids = tree->dict->get_item("Kids");
        EXPECT_EQ(kids ? show_object(*kids) : "-", c.kids);
        EXPECT_EQ(f.entry(3, "Annots"), "-");
    }
}

TEST(DesignTest, TheStructureFollows)
{
    const struct {
        const char* tree;
        const char* nodes;    // objects 16 and 17
        const char* numbers;  // of the first node, without "t"
        const char* limits;
    } cases[] = {
        {" 16 0 R", "/Nums[0[14 0 R]1 14 0 R 2 15 0 R]", "[0 [14 0 R] 2 15 0 R]", "-"},
        {"<</Kids[16 0 R 17 0 R]>>", "/Limits[0 1]/Nums[0[14 0 R]1 14 0 R];/Limits[2 2]/Nums[2 15 0 R]", "[0 [14 0 R]]",
         "[0 0]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tree);
        FormAtWork f(tagged_form(c.tree, c.nodes));
        ASSERT_TRUE(f.document.remove_field(f.field("t")).ok());
        EXPECT_EQ(f.entry(13, "K"), "[15 0 R]") << "the element that held it alone goes";
        EXPECT_EQ(f.entry(16, "Nums") + f.entry(16, "Limits"), std::string(c.numbers) + c.limits);
        PDF_NEW_FIELD field;
        field.name = "n";
        field.places = {{{1, 50, 9, 9}}};
        ASSERT_TRUE(f.document.add_field(field).ok());
        EXPECT_EQ(f.entry(f.field("n").m_ref.num, "StructParent") + f.entry(12, "ParentTreeNextKey"), "34");
        ASSERT_TRUE(f.document.remove_field(f.field("u")).ok());
        EXPECT_EQ(f.entry(15, "K"), "[0]") << "the text stays";
        EXPECT_EQ(f.entry(3, "Tabs"), "/S");
    }
}

// What a screen reader reads stays in its order.
TEST(DesignTest, MovedWidgetsKeepTheirPlacesInTheStructure)
{
    const auto structure = [](FormAtWork& f) {
        return f.entry(13, "K") + f.entry(14, "Pg") + f.entry(14, "K") + f.entry(15, "Pg") + f.entry(15, "K") +
               f.entry(17, "Nums");
    };
    for (const int32_t page : {1, 2}) {
        SCOPED_TRACE(page);
        FormAtWork f(tagged_form(" 17 0 R", "/Type/Page/Parent 2 0 R/MediaBox[0 0 200 100];/Nums[1 14 0 R 2 15 0 R]",
                                 "[3 0 R 16 0 R]/Count 2"));
        const std::string before = structure(f);
        PDF_MOVE move;
        move.places = {{{50, 50, 20, 10}, page}};
        for (const char* name : {"t", "u"})
            ASSERT_TRUE(f.document.move_widgets(f.field(name), move).ok());
        EXPECT_EQ(f.entry(10, "StructParent") + f.entry(11, "StructParent"), "12");
        if (page == 1)
            EXPECT_EQ(structure(f), before);
        else
            EXPECT_EQ(structure(f), "[14 0 R 15 0 R]16 0 R[<< /Obj 10 0 R /Pg 16 0 R /Type /OBJR >>]"
                                    "3 0 R[0 << /Obj 11 0 R /Pg 16 0 R /Type /OBJR >>]"
                                    "[1 14 0 R 2 15 0 R]");
        EXPECT_EQ(f.entry(16, "Tabs"), page == 1 ? "-" : "/S");
    }
}

TEST(DesignTest, CopiesKeepWhatTheyInherit)
{
    FormAtWork f(pdf_with("/AcroForm 10 0 R", "/Annots[12 0 R 15 0 R]",
                          "/Fields[11 0 R 13 0 R]/CO[12 0 R];/T(g)/FT/Ch/Ff 131072/Opt[(x)]/Kids[12 0 R];"
                          "/T(c)/Parent 11 0 R/Subtype/Widget/Rect[1 1 9 9]/V(x)/NM(n);"
                          "/T(o)/Kids[14 0 R];/T(k)/Parent 13 0 R/Kids[15 0 R]/FT/Sig/V<<>>;"
                          "/Parent 14 0 R/Subtype/Widget/Rect[1 1 9 9]"));
    PDF_MOVE move;
    move.places = {{{50, 50, 20, 10}, 0}};
    CPDFField* copy = nullptr;
    ASSERT_TRUE(f.document.copy_field(f.field("g.c"), "o.c", move, PDF_EDIT::FORCE, &copy).ok());
    const uint32_t num = copy->m_ref.num;
    EXPECT_EQ(f.entry(num, "Ff") + f.entry(num, "Opt") + f.entry(num, "Parent") + f.entry(num, "V") +
                  f.entry(num, "Rect") + f.entry(num, "NM"),
              "131072[(x)]13 0 R(x)[50 50 70 60]-");
    EXPECT_EQ(f.entry(10, "CO"), "[12 0 R " + ref_syntax(copy->m_ref) + "]");
    ASSERT_TRUE(f.document.copy_field(f.field("o.k"), "s", move, PDF_EDIT::FORCE, &copy).ok());
    EXPECT_EQ(f.entry(copy->m_ref.num, "V") + f.entry(copy->m_ref.num, "FT"), "-/Sig");
    EXPECT_EQ(f.document.widgets_of(*copy).size(), 1u);
    FormAtWork again(f.saved());
    EXPECT_EQ(again.memory(), f.memory());
}

#ifdef FORMWORK_ALLOC_HOOK

TEST(DesignTest, EveryFailedAllocation)
{
    for (const int operation : {0, 1, 2, 3}) {
        SCOPED_TRACE(operation);
        each_failed_allocation([&](const auto& arm) {
            FormAtWork f(tagged_form("<</Nums[1 14 0 R 2 15 0 R]>>"));
            f.document.widgets_of(f.field("t"));
            PDF_FIELD_DESIGN change;
            change.label = "label";
            change.style.font = "Times";
            change.calculation = {"SUM", {"u"}};
            PDF_MOVE move;
            move.places = {{{50, 50, 20, 10}, 1}};
            CPDFStatus status;
            const bool failed = arm([&] {
                status = operation == 0   ? design(f, "t", change)
                         : operation == 1 ? f.document.copy_field(f.field("t"), "g.n", move)
                         : operation == 2 ? f.document.move_widgets(f.field("t"), move)
                                          : f.document.order_tabs({PDF_TAB_ORDER::STRUCTURE, {}, 0});
            });
            EXPECT_TRUE(status.ok() || failed) << status.text;
            FormAtWork again(f.saved());
        });
    }
}

#endif
