// Changing the structure of a form: what the file then holds, and that memory and file agree without reopening.

#include <gmock/gmock.h>

#include "core/limits.h"
#include "document/action_list.h"
#include "document/edit/new_object.h"
#include "forms/field_kind.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"
#include "tests/support/new_hook.h"

namespace {

constexpr const char* PAGE = "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]";

// A catalog with these entries, one page with these, and objects from 10 on.
std::string pdf_with(const std::string& catalog, const std::string& page = "", const std::string& objects = "")
{
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R" + catalog + ">>").object(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
    file.object(3, PAGE + page + ">>");
    return put_objects(file, 10, objects).table().text;
}

// Full names in tree order with the kinds of the fields and the page of their first widget.
std::string tree_of(CPDFDocument& document)
{
    std::string text;
    CPDFNumberedNames names(document.form());
    for_each_field(document.form(), [&](CPDFField& field) {
        text += names.name_of(field) + ":" + field_kind(field).name + " ";
        EXPECT_TRUE(field.m_name.len <= 0 || document.field(full_name(field))) << full_name(field);
    });
    return text;
}

// What the saved file holds must be what memory shows.
void expect_same_when_reopened(FormAtWork& f)
{
    FormAtWork again(f.saved());
    EXPECT_EQ(tree_of(again.document), tree_of(f.document));
    EXPECT_EQ(again.memory(), f.memory());
}

PDF_NEW_FIELD new_field(PDF_FIELD_KIND_ID kind, const std::string& name)
{
    PDF_NEW_FIELD field;
    field.kind = kind;
    field.name = name;
    field.places = {{{10, 20, 60, 12}}};
    if (kind == KIND_RADIO)
        field.states = {"S", "L"};
    return field;
}

CPDFStatus change(FormAtWork& f, const std::string& name, const PDF_FIELD_CHANGE& change)
{
    return f.document.change_field(f.field(name), change);
}

}  // namespace

TEST(EditTest, AddToEveryKindOfForm)
{
    const struct {
        const char* label;
        std::string file;
        const char* annots_before;
    } cases[] = {
        {"no form, no annotations", pdf_with(""), "["},
        {"direct form, direct annotations",
         pdf_with("/AcroForm<</Fields[]/DR<<>>>>", "/Annots[10 0 R]", "/Subtype/Link"), "[10 0 R "},
        {"form and arrays apart", pdf_with("/AcroForm 10 0 R", "/Annots 12 0 R", "/Fields 11 0 R;[];[13 0 R]"),
         "[13 0 R "},
        {"form missing", pdf_with("/AcroForm 70 0 R", "/Annots 71 0 R"), "["},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormAtWork f(c.file);
        std::string annots = c.annots_before;
        for (const PDF_FIELD_KIND_ID kind : {KIND_TEXT, KIND_CHECK, KIND_COMBO, KIND_SIGNATURE, KIND_RADIO}) {
            PDF_NEW_FIELD field = new_field(kind, "g." + std::to_string(kind));
            CPDFField* added = nullptr;
            const CPDFStatus status = f.document.add_field(field, PDF_EDIT::RESPECT_SIGNATURES, &added);
            ASSERT_TRUE(status.ok()) << status.text;
            for (const CPDFAnnotWidget* widget : f.document.widgets_of(*added))
                annots += std::to_string(widget->m_ref.num) + " 0 R ";
        }
        annots.back() = ']';
        CPDFObj page;
        CPDFObj list;
        f.document.xref().get_entity(page, {3, 0});
        resolve_obj(&f.document.xref(), page.dict->get_item("Annots"), list);
        EXPECT_EQ(show_object(list), annots);
        EXPECT_EQ(tree_of(f.document),
                  "g:container g.4:text g.3:check g.5:combo g.7:signature g.1:radio g.1#0:radio g.1#1:radio ");
        const uint32_t form = f.document.form().m_ref.num;
        EXPECT_EQ(f.entry(form, "SigFlags"), "3");
        EXPECT_EQ(f.entry(form, "NeedAppearances"), "-");
        EXPECT_TRUE(f.document.set_value(f.field("g.1"), "L").ok());
        EXPECT_TRUE(f.document.set_value(f.field("g.3"), true).ok());
        expect_same_when_reopened(f);
    }
}

// Buttons in one rectangle go from left to right, or down, as the page is shown.
TEST(EditTest, RadioButtonsShareARectangle)
{
    const struct {
        const char* turn;
        const char* wide;  // the first button's rectangles
        const char* tall;
    } cases[] = {
        {"0", "[10 10 20 20]", "[10 20 20 30]"},
        {"90", "[10 10 20 20]", "[10 10 20 20]"},
        {"180", "[20 10 30 20]", "[10 10 20 20]"},
        {"270", "[20 10 30 20]", "[10 20 20 30]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.turn);
        FormAtWork f(pdf_with("", std::string("/Rotate ") + c.turn));
        for (const bool wide : {true, false}) {
            PDF_NEW_FIELD field = new_field(KIND_RADIO, wide ? "wide" : "tall");
            field.places = {{{10, 10, wide ? 20.0 : 10.0, wide ? 10.0 : 20.0}}};
            ASSERT_TRUE(f.document.add_field(field).ok());
            const uint32_t first = f.document.widgets_of(f.field(field.name))[0]->m_ref.num;
            EXPECT_EQ(f.entry(first, "Rect"), wide ? c.wide : c.tall);
            EXPECT_THAT(f.entry(first, "AP"), testing::HasSubstr("/S "));
        }
    }
}

TEST(EditTest, AddRefusesByNameAndChangesNothing)
{
    FormAtWork f(pdf_with("/AcroForm 10 0 R", "/CropBox[0 0 0 0]",
                          "/Fields[11 0 R 13 0 R];/T(a)/FT/Tx/Kids[12 0 R];/Subtype/Widget/Parent 11 0 R;"
                          "/T(m)/FT/Tx/MaxLen 1/Kids[14 0 R];/T(k)/Parent 13 0 R"));
    const struct {
        const char* part;
        void (*spoil)(PDF_NEW_FIELD& field);
    } cases[] = {
        {"already", [](PDF_NEW_FIELD& field) { field.name = "a"; }},
        {"can't hold other fields", [](PDF_NEW_FIELD& field) { field.name = "a.b"; }},
        {"is no name", [](PDF_NEW_FIELD& field) { field.name = "b."; }},
        {"no page 2", [](PDF_NEW_FIELD& field) { field.places[0].page = 2; }},
        {"too deep",
         [](PDF_NEW_FIELD& field) {
             for (field.name = "x"; field.name.size() < 2 * LIMIT_FIELD_DEPTH;)
                 field.name += ".x";
         }},
        {"longer than", [](PDF_NEW_FIELD& field) { field.name = std::string(LIMIT_FULL_NAME, 'x') + ".y"; }},
        {"not on page 1", [](PDF_NEW_FIELD& field) { field.places[0].rect.x = 150; }},
        {"is empty", [](PDF_NEW_FIELD& field) { field.places[0].rect.height = 0.0004; }},
        {"at most 1 ", [](PDF_NEW_FIELD& field) { field.name = "m.n", field.entries.default_value = "ab"; }},
        {"one rectangle", [](PDF_NEW_FIELD& field) { field.places.clear(); }},
        {"no states", [](PDF_NEW_FIELD& field) { field.states = {"x"}; }},
        {"no options", [](PDF_NEW_FIELD& field) { field.entries.options.emplace(); }},
        {"no flag \"edit\"", [](PDF_NEW_FIELD& field) { field.entries.set_flags = FIELD_EDIT; }},
        {"can't be a comb", [](PDF_NEW_FIELD& field) { field.entries.set_flags = FIELD_COMB; }},
        {"can't be added", [](PDF_NEW_FIELD& field) { field.kind = KIND_CONTAINER; }},
        {"state for each", [](PDF_NEW_FIELD& field) { field.kind = KIND_RADIO; }},
        {"no option \"x\"", [](PDF_NEW_FIELD& field) { field.kind = KIND_LIST, field.entries.default_value = "x"; }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.part);
        PDF_NEW_FIELD field = new_field(KIND_TEXT, "b");
        c.spoil(field);
        EXPECT_THAT(f.document.add_field(field).text, testing::HasSubstr(c.part));
    }
    EXPECT_EQ(f.document.xref().changed_count(), 0);
}

TEST(EditTest, RemoveLeavesNothingBehind)
{
    // A field, its orphan widget 13 and its kid 14 on two pages' lists; 12 is listed as a kid and at the top.
    FormAtWork f(pdf_with("/AcroForm 10 0 R", "/Annots[11 0 R 12 0 R 13 0 R 14 0 R 15 0 R]",
                          "/Fields[16 0 R 12 0 R 15 0 R]/CO[12 0 R 15 0 R]/SigFlags 3;/Subtype/Link;"
                          "/T(b)/FT/Tx/Subtype/Widget/Parent 16 0 R/Kids[14 0 R];/Subtype/Widget/Parent 12 0 R;"
                          "/Subtype/Widget/Parent 12 0 R;/T(c)/FT/Sig/Subtype/Widget;/T(a)/FT/Tx/Kids[12 0 R]"));
    EXPECT_EQ(tree_of(f.document), "a:text a.b:text a.b#0:text c:signature ");
    ASSERT_TRUE(f.document.remove_field(f.field("a.b")).ok());
    EXPECT_EQ(tree_of(f.document), "c:signature ");
    EXPECT_EQ(f.document.field("a.b"), nullptr);
    EXPECT_EQ(f.entry(3, "Annots"), "[11 0 R 15 0 R]");
    EXPECT_EQ(f.entry(10, "Fields") + f.entry(10, "CO") + f.entry(10, "SigFlags"), "[15 0 R][15 0 R]3");
    expect_same_when_reopened(f);
    ASSERT_TRUE(f.document.remove_field(f.field("c")).ok());
    EXPECT_EQ(f.entry(10, "SigFlags"), "0");
    f.document.revert();
    EXPECT_EQ(tree_of(f.document), "a:text a.b:text a.b#0:text c:signature ");
    EXPECT_EQ(f.saved(), std::string(f.document.data(), f.document.data() + f.document.size()));
}

TEST(EditTest, AKidThatIsListedTwiceGoesAltogether)
{
    FormAtWork f(
        pdf_with("/AcroForm<</Fields[10 0 R 10 0 R]>>", "/Annots[11 0 R]",
                 "/T(g)/FT/Tx/Kids[11 0 R 12 0 R 11 0 R];/T(a)/Parent 10 0 R/Subtype/Widget;/T(b)/Parent 10 0 R"));
    ASSERT_TRUE(f.document.remove_field(f.field("g.a")).ok());
    EXPECT_EQ(f.entry(10, "Kids") + f.entry(3, "Annots"), "[12 0 R][]");
    expect_same_when_reopened(f);
}

// Runs under the address sanitizer.
TEST(EditTest, WidgetsStayWhereTheyAre)
{
    FormAtWork f(
        pdf_with("/AcroForm<</Fields[10 0 R 11 0 R]>>", "/Annots[10 0 R]", "/T(t)/FT/Tx/Subtype/Widget;/T(g)"));
    const auto widgets = f.document.widgets_of(f.field("t"));
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(f.document.add_field(new_field(KIND_RADIO, "r" + std::to_string(i))).ok());
    ASSERT_TRUE(f.document.move_field(f.field("t"), &f.field("g")).ok());
    ASSERT_EQ(widgets.size(), 1u);
    EXPECT_EQ(widgets[0]->m_ref.num, 10u);
    EXPECT_EQ(f.document.widgets_of(f.field("g.t"))[0], widgets[0]);
    EXPECT_EQ(f.field("g.t").m_widget, widgets[0]);
    EXPECT_EQ(f.document.widgets_of(f.field("r7")).size(), 2u);
}

TEST(EditTest, AddGoesByTheBoxThatIsDrawn)
{
    const struct {
        const char *page, *tree;
        const char* box;
    } cases[] = {
        {"/MediaBox[0 0 200 100]", "", "0,0 to 200,100"},
        {"/MediaBox[0 0 200 100]/CropBox[150 90 50 10]", "", "50,10 to 150,90"},
        {"/MediaBox[0 0 200 100]", "/CropBox[50 10 900 900]", "50,10 to 200,100"},
        {"/MediaBox[0 0 200 100]/CropBox[300 300 400 400]", "", "0,0 to 200,100"},
        {"/CropBox[0 0 0 0]", "/MediaBox[0 0 200 100]", "0,0 to 200,100"},
        {"/MediaBox[0 0 (200) 100]", "", "0,0 to 612,792"},
    };
    for (const auto& c : cases) {
        PdfBuilder file;
        file.object(1, "<</Pages 2 0 R>>").object(2, "<</Type/Pages/Kids[3 0 R]" + std::string(c.tree) + ">>");
        FormAtWork f(file.object(3, "<</Type/Page/Parent 2 0 R" + std::string(c.page) + ">>").table().text);
        PDF_NEW_FIELD field = new_field(KIND_TEXT, "t");
        field.places = {{{-9, 0, 1, 1}}};
        EXPECT_THAT(f.document.add_field(field).text, testing::HasSubstr(c.box)) << c.page << c.tree;
    }
}

TEST(EditTest, WhatCanNotBeStoredIsNoSuccess)
{
    FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R]>>", "", "/T(t)/FT/Tx"));
    CPDFObj nothing;
    f.document.xref().store_changed({10, 0}, nothing);
    EXPECT_THAT(f.document.rename_field(f.field("t"), "u").text, testing::HasSubstr("object 10 is missing"));
    EXPECT_EQ(f.document.set_value(f.field("t"), "x").code, PDF_CODE::DAMAGED);
}

TEST(EditTest, RenameAndMove)
{
    FormAtWork f(pdf_with(
        "/AcroForm<</Fields[10 0 R 12 0 R 13 0 R]>>", "",
        "/T(a)/FT/Ch/Ff 131072/Opt[(x)]/DA(d)/Kids[11 0 R];/T(k)/Parent 10 0 R;/T(b);/T(t)/FT/Tx/Subtype/Widget"));
    EXPECT_FALSE(f.document.rename_field(f.field("b"), "a").ok());
    EXPECT_FALSE(f.document.rename_field(f.field("b"), "x.y").ok());
    EXPECT_FALSE(f.document.rename_field(f.field("b"), "").ok());
    EXPECT_FALSE(f.document.move_field(f.field("a"), &f.field("a")).ok());
    EXPECT_FALSE(f.document.move_field(f.field("b"), &f.field("t")).ok());
    EXPECT_EQ(f.document.xref().changed_count(), 0);
    ASSERT_TRUE(f.document.rename_field(f.field("a"), "é").ok());
    EXPECT_EQ(f.document.field("a.k"), nullptr);
    ASSERT_TRUE(f.document.move_field(f.field("é.k"), &f.field("b")).ok());
    EXPECT_EQ(f.entry(11, "Opt") + f.entry(11, "FT") + f.entry(11, "Parent"), "[(x)]/Ch12 0 R");
    EXPECT_EQ(tree_of(f.document), "b:container b.k:combo t:text ") << "nothing is left in é";
    expect_same_when_reopened(f);
    FormAtWork named(f.saved(), PDF_LOAD::NAMED_FIELDS);
    ASSERT_TRUE(named.document.rename_field(named.field("b.k"), "m").ok());
    EXPECT_EQ(tree_of(named.document), "b:container b.m:combo t:text ");
    ASSERT_TRUE(f.document.move_field(f.field("b.k"), nullptr).ok());
    EXPECT_EQ(f.entry(11, "Parent"), "-");
    expect_same_when_reopened(f);
}

TEST(EditTest, GroupsHandNothingDown)
{
    FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R 12 0 R]>>", "",
                          "/T(g)/FT/Tx/Ff 1/V(x)/DV(x)/MaxLen 3/AA<</K<</S/JavaScript/JS(k)>>>>/Kids[11 0 R];"
                          "/T(k)/Parent 10 0 R;/T(o)/Kids[13 0 R 14 0 R];/T(a)/FT/Tx/Parent 12 0 R;"
                          "/T(b)/FT/Tx/V(four)/Parent 12 0 R"));
    EXPECT_THAT(f.document.move_field(f.field("o"), &f.field("g")).text, testing::HasSubstr("at most 3"));
    EXPECT_EQ(f.document.xref().changed_count(), 0);
    ASSERT_TRUE(f.document.move_field(f.field("o.a"), &f.field("g")).ok());
    for (const PDF_FIELD_KIND_ID kind : {KIND_LIST, KIND_CHECK})
        ASSERT_TRUE(f.document.add_field(new_field(kind, "g." + std::to_string(kind))).ok());
    for (const auto& [name, off] : {std::pair{"g.a", "()"}, std::pair{"g.6", "()"}, std::pair{"g.3", "/Off"}}) {
        SCOPED_TRACE(name);
        const uint32_t num = f.field(name).m_ref.num;
        EXPECT_EQ(f.entry(num, "Ff") + f.entry(num, "V") + f.entry(num, "DV") + f.entry(num, "AA"),
                  std::string("0") + off + off + "<< >>");
    }
    expect_same_when_reopened(f);
}

TEST(EditTest, SharedAnnotationsStayWithTheOtherPage)
{
    PdfBuilder file;
    file.object(1, "<</Pages 2 0 R/AcroForm<</Fields[11 0 R]>>>>").object(2, "<</Type/Pages/Kids[3 0 R 4 0 R]>>");
    file.object(3, std::string(PAGE) + "/Annots 10 0 R>>").object(4, std::string(PAGE) + "/Annots 10 0 R>>");
    file.object(10, "[11 0 R]").object(11, "<</T(old)/FT/Tx/Subtype/Widget>>");
    FormAtWork f(file.table().text);
    PDF_NEW_FIELD field = new_field(KIND_TEXT, "t");
    field.places = {{{0, 0, 200.0004, 100}, 2}};
    ASSERT_TRUE(f.document.add_field(field).ok());
    ASSERT_TRUE(f.document.remove_field(f.field("old")).ok());
    EXPECT_EQ(f.entry(3, "Annots") + f.entry(4, "Annots"), "10 0 R[" + ref_syntax(f.field("t").m_ref) + "]");
}

TEST(EditTest, Change)
{
    FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R 11 0 R 13 0 R 14 0 R]>>", "",
                          "/T(t)/FT/Tx/V(abcd)/MaxLen 9;/T(l)/FT/Ch/Opt[(a)(b)]/V(b)/I[1]/Kids[12 0 R];"
                          "/Parent 11 0 R/Subtype/Widget/Ff 1;/T(c)/FT/Btn/Subtype/Widget/AP<</N<</On 3 0 R>>>>;"
                          "/T(odd)/FT/Tx/Ff 16777216"));
    PDF_FIELD_CHANGE required;
    required.set_flags = FIELD_REQUIRED;
    EXPECT_TRUE(change(f, "odd", required).ok());
    required.set_flags = FIELD_COMB;
    EXPECT_FALSE(change(f, "odd", required).ok());
    EXPECT_THAT(f.entry(1, "AcroForm"), testing::Not(testing::HasSubstr("NeedAppearances")));
    PDF_FIELD_CHANGE shorter;
    shorter.max_length = 3;
    EXPECT_FALSE(change(f, "t", shorter).ok());
    PDF_FIELD_CHANGE none;
    none.max_length = 0;
    none.set_flags = FIELD_REQUIRED;
    ASSERT_TRUE(change(f, "t", none).ok());
    EXPECT_EQ(f.entry(10, "MaxLen") + f.entry(10, "Ff"), "-2");
    PDF_FIELD_CHANGE options;
    options.options = {{"n", "New"}, {"x", ""}};
    EXPECT_FALSE(change(f, "l", options).ok()) << "its value would go";
    options.options->push_back({"b", ""});
    options.default_value = "New";
    options.clear_flags = FIELD_READ_ONLY;
    ASSERT_TRUE(change(f, "l", options).ok());
    EXPECT_EQ(f.entry(11, "Opt") + f.entry(11, "I") + f.entry(11, "DV"), "[[(n) (New)] (x) (b)][2](n)");
    EXPECT_EQ(f.entry(12, "Ff"), "0") << "the widget follows";
    EXPECT_EQ(f.field("l").m_opt_cnt, 3);
    EXPECT_EQ(f.field("t").m_flags, 2u);
    expect_same_when_reopened(f);
}

// A default is understood as a value is that fills the field, and what one refuses the other does.
TEST(EditTest, DefaultsAreWhatFillTakes)
{
    const std::string text =
        pdf_with("/AcroForm<</Fields[10 0 R 13 0 R 14 0 R 15 0 R 16 0 R]>>", "",
                 "/T(r)/FT/Btn/Ff 32768/Opt[(small)(large)]/Kids[11 0 R 12 0 R];/Parent 10 0 R" + widget_states("0") +
                     ";/Parent 10 0 R" + widget_states("1") + ";/T(c)/FT/Ch/Ff 131072/Opt[[<FEFF0061>(A)](b)];" +
                     "/T(m)/FT/Ch/Ff 2097152/Opt[(a)(b)];/T(t)/FT/Tx/MaxLen 2;/T(k)/FT/Btn" + widget_states("On"));
    const std::pair<const char*, CPDFValue> cases[] = {
        {"r", "large"},
        {"r", "0"},
        {"r", "Off"},
        {"r", "huge"},
        {"r", true},
        {"c", "A"},
        {"c", "x"},
        {"c", ""},
        {"m", std::vector<std::string>{"b", "a"}},
        {"c", std::vector<std::string>{"b", "a"}},
        {"t", "\xC3\xA9z"},
        {"t", "abc"},
        {"t", true},
        {"k", "true"},
        {"k", "On"},
        {"k", "Yes"},
    };
    for (const auto& [name, value] : cases) {
        SCOPED_TRACE(testing::Message() << name << " " << (value.index() ? "" : std::get<std::string>(value)));
        FormAtWork f(text);
        PDF_FIELD_CHANGE as_default;
        as_default.default_value = value;
        const CPDFStatus set = change(f, name, as_default);
        const CPDFStatus filled = f.set(name, value);
        EXPECT_EQ(set.text, filled.text);
        const uint32_t num = f.field(name).m_ref.num;
        const std::string v = f.entry(num, "V");
        EXPECT_EQ(f.entry(num, "DV"), filled.ok() && v == "-" ? "()" : v);
    }
}

TEST(EditTest, AFieldWithoutItsDictionaryIsNotChanged)
{
    for (const uint32_t lost : {10, 11}) {
        FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R]>>", "",
                              "/T(t)/FT/Tx/Kids[11 0 R];/Parent 10 0 R/Subtype/Widget/Ff 2"));
        CPDFField& field = f.field("t");
        CPDFObj nothing;
        f.document.xref().store_changed({lost, 0}, nothing);
        PDF_FIELD_CHANGE read_only;
        read_only.set_flags = FIELD_READ_ONLY;
        const CPDFStatus status = f.document.change_field(field, read_only);
        EXPECT_EQ(status.code, PDF_CODE::DAMAGED) << status.text;
        EXPECT_EQ(field.m_kids[0]->m_flags, 2u);
    }
}

TEST(EditTest, SignaturesForbid)
{
    const std::string signature = "/V<</ByteRange[0 1 2 3]/Contents<01>/Reference[<</TransformMethod/";
    for (const auto& [reference, edit_other] : {std::pair{"DocMDP/TransformParams<</P 3>>", false},
                                                std::pair{"DocMDP", false}, std::pair{"FieldMDP", true}}) {
        SCOPED_TRACE(reference);
        FormAtWork f(pdf_with("/AcroForm 10 0 R", "",
                              "/Fields[11 0 R 12 0 R];/T(s)/FT/Sig" + signature + reference + ">>]>>;/T(t)/FT/Tx"));
        EXPECT_EQ(f.document.add_field(new_field(KIND_TEXT, "n")).ok(), edit_other);
        EXPECT_EQ(f.document.remove_field(f.field("s")).code, PDF_CODE::READ_ONLY);
        EXPECT_EQ(f.document.rename_field(f.field("t"), "u").ok(), edit_other);
        EXPECT_TRUE(f.document.remove_field(f.field("s"), PDF_EDIT::FORCE).ok());
    }
}

TEST(EditTest, ListActions)
{
    FormAtWork f(pdf_with(
        "/OpenAction[3 0 R/Fit]/AA<</WP 10 0 R>>/Names<</JavaScript 11 0 R>>/Outlines<</First 15 0 R>>/AcroForm<</Fields[12 0 R]/CO[12 0 R 9 0 R]>>",
        "/AA<</O 10 0 R>>/Annots[13 0 R 16 0 R<</Subtype/Link/A<</S/URI/URI(d)>>>>]",
        "/S/JavaScript/JS(p)/Next<</S/URI/URI(u)>>;/Kids[11 0 R 14 0 R];"
        "/T(t)/FT/Tx/AA<</C 10 0 R>>/Kids[13 0 R];/Subtype/Widget/A<</S/ResetForm/Fields[12 0 R(q)]>>;"
        "/Names[(n)10 0 R];/Title(b)/First 15 0 R/Next 15 0 R/A<</S/URI/URI(o)>>;/Subtype/Link/A<</S/URI/URI(l)>>"));
    std::string text;
    const auto show = [&text](const PDF_LISTED_ACTION& at) {
        text += (at.field ? full_name(*at.field) : std::to_string(at.page)) + " " + at.event + " " + at.type + " " +
                at.script + at.target;
        for (const std::string& name : at.fields)
            text += " " + name;
        text += "\n";
    };
    EXPECT_TRUE(list_actions(f.document, nullptr, show).ok());
    EXPECT_EQ(text, "0 will print JavaScript p\n0 will print URI u\n0 script n JavaScript p\n0 script n URI u\n"
                    "0 bookmark b URI o\n1 open JavaScript p\n1 open URI u\n1 activate URI l\n1 activate URI d\n"
                    "t calculate JavaScript p\nt calculate URI u\n"
                    "t activate ResetForm  t q\n");
    const std::vector<CPDFField*> order = calculation_order(f.document);
    EXPECT_TRUE(order.size() == 1 && order[0] == &f.field("t"));
}

#ifdef FORMWORK_ALLOC_HOOK

// What runs out of memory says so; the document can still be saved and opened.
TEST(EditTest, EveryFailedAllocation)
{
    for (const int operation : {0, 1, 2, 3}) {
        SCOPED_TRACE(operation);
        each_failed_allocation([&](const auto& arm) {
            FormAtWork f(pdf_with("/AcroForm<</Fields[10 0 R 12 0 R]/CO[10 0 R]>>", "/Annots[10 0 R]",
                                  "/T(t)/FT/Tx/Subtype/Widget;;/T(g)"));
            f.document.widgets_of(f.field("t"));
            PDF_FIELD_CHANGE change;
            change.default_value = "d";
            CPDFStatus status;
            const bool failed = arm([&] {
                status = operation == 0   ? f.document.add_field(new_field(KIND_CHECK, "g.n"))
                         : operation == 1 ? f.document.remove_field(f.field("t"))
                         : operation == 2 ? f.document.move_field(f.field("t"), &f.field("g"))
                                          : f.document.change_field(f.field("t"), change);
            });
            EXPECT_TRUE(status.ok() || failed);
            FormAtWork again(f.saved());
            EXPECT_TRUE(!status.ok() || tree_of(again.document) == tree_of(f.document));
        });
    }
}

// The same where `new` fails: the front class says so, and no exception leaves it.
TEST(EditTest, EveryFailedNew)
{
    const std::string text = pdf_with("/AcroForm<</Fields[10 0 R 11 0 R 12 0 R]>>", "/Annots[10 0 R 11 0 R]",
                                      "/T(t)/FT/Tx/DV(d)/Subtype/Widget;/T(c)/FT/Btn" + widget_states("On") + ";/T(g)");
    const CPDFValue word = "x";
    const CPDFValue on = true;
    const PDF_NEW_FIELD check = new_field(KIND_CHECK, "g.n");
    for (const int operation : {0, 1, 2, 3, 4, 5, 6}) {
        bool failed = true;
        for (int64_t n = 0; failed && !HasFailure(); ++n) {
            SCOPED_TRACE(std::to_string(operation) + ", new " + std::to_string(n + 1));
            FormAtWork f(text);
            CPDFField** fields = f.document.form().m_fields;
            std::vector<uint8_t> input(text.begin(), text.end());
            std::vector<uint8_t> output;
            fail_new_after(n);
            const CPDFStatus status = operation == 0   ? f.document.open(std::move(input))
                                      : operation == 1 ? f.document.set_value(*fields[0], word)
                                      : operation == 2 ? f.document.set_value(*fields[1], on)
                                      : operation == 3 ? f.document.reset()
                                      : operation == 4 ? f.document.add_field(check)
                                      : operation == 5 ? f.document.remove_field(*fields[0])
                                                       : f.document.save(output);
            failed = new_calls() > n;
            fail_new_after(-1);
            EXPECT_TRUE(failed || status.ok()) << status.text;  // sorting does without its buffer
            EXPECT_EQ(status.text.find("memory") == std::string::npos, status.ok()) << status.text;
            EXPECT_TRUE(status.ok() || output.empty());
        }
    }
}

#endif
