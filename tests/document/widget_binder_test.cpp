#include "document/widget_binder.h"

#include <map>

#include "tests/document/fill_fixture.h"

namespace {

// The object numbers of a field's widgets in their order.
std::string widgets_of(FormAtWork& f, const CPDFField& field)
{
    std::string text;
    for (const CPDFAnnotWidget* widget : f.document.widgets_of(field))
        text += std::to_string(widget->m_ref.num) + " ";
    return text;
}

// A document with the page objects 5 and 6, whose annotations are given, and the fields from object 10 on.
std::string with_pages(const std::string& first, const std::string& second, const std::vector<std::string>& fields,
                       const std::map<uint32_t, std::string>& objects, uint32_t gen = 0)
{
    PdfBuilder file;
    file.form(fields).object(2, "<</Type/Pages/Kids[5 0 R 6 0 R]>>");
    file.object(5, "<</Type/Page/Annots[" + first + "]>>").object(6, "<</Type/Page/Annots[" + second + "]>>");
    for (const auto& [num, text] : objects)
        file.object(num, text[0] == '[' ? text : "<<" + text + ">>", gen);
    return file.table().text;
}

}  // namespace

TEST(WidgetBinderTest, WidgetsInTheOrderOfKids)
{
    const std::string a = widget_states("a");
    const std::string named = a + "/Parent 10 0 R";
    const struct {
        const char* label;
        std::string field;  // object 10, a radio group; its widgets stand for (0) (1) (2) in their order
        std::map<uint32_t, std::string> objects;
        const char* first;
        const char* second;
        const char* expected;  // widgets of the group, then those bound as m_widget of objects 10, 20 to 23
    } cases[] = {
        {"merged", a, {}, "10 0 R", "", "10 ;10 - - - -"},
        {"kids with a parent",
         "/Kids[21 0 R 20 0 R]",
         {{20, named}, {21, named}},
         "20 0 R 21 0 R",
         "",
         "21 20 ;- 20 21 - -"},
        {"kids without", "/Kids[21 0 R 20 0 R]", {{20, a}, {21, a}}, "20 0 R", "21 0 R", "21 20 ;21 21 21 - -"},
        {"mixed",
         "/Kids[20 0 R 21 0 R 22 0 R]",
         {{20, named}, {21, a}, {22, named}},
         "",
         "",
         "20 21 22 ;21 20 21 22 -"},
        {"mixed, odd entries",
         "/Kids[20 0 R null 22 0 R 9 0 R 21 0 R 22 0 R 20 0 R]",
         {{20, named}, {21, a}, {22, named}},
         "",
         "",
         "20 22 21 ;21 20 21 22 -"},
        {"mixed, list elsewhere",
         "/Kids 30 0 R",
         {{20, named}, {21, a}, {22, a}, {30, "[21 0 R 20 0 R 22 0 R]"}},
         "",
         "",
         "21 20 22 ;21 20 21 21 -"},
        {"merged and kids", a + "/Kids[10 0 R 20 0 R]", {{20, named}}, "", "", "10 20 ;10 20 - - -"},
        {"kids of kids",
         "/Kids[20 0 R 23 0 R]",
         {{20, "/Parent 10 0 R/Kids[21 0 R 22 0 R]"}, {21, a + "/Parent 20 0 R"}, {22, a}, {23, a}},
         "",
         "",
         "21 22 23 ;23 22 21 22 23"},
        {"on no page", "/Kids[20 0 R]", {{20, named}}, "", "", "20 ;- 20 - - -"},
        {"on two pages", "/Kids[20 0 R]", {{20, named}}, "20 0 R 20 0 R", "20 0 R", "20 ;- 20 - - -"},
        {"known to the page only",
         "/Kids[20 0 R]",
         {{20, named}, {21, named}, {22, a}},
         "22 0 R 21 0 R",
         "20 0 R",
         "20 21 ;21 20 - - -"},
        {"all known to the page only", "", {{20, named}, {21, named}}, "21 0 R", "20 0 R", "20 21 ;20 - - - -"},
        {"no widgets of it",
         "/Kids[20 0 R]",
         {{20, named},
          {21, "/Subtype/Link/Parent 10 0 R"},
          {22, a + "/T(own)/Parent 10 0 R"},
          {23, a + "/Parent 9 0 R"}},
         "21 0 R 22 0 R 23 0 R 99 0 R",
         "",
         "20 ;- 20 - - -"},
        {"kids that are no widgets",
         "/Kids[20 0 R 21 0 R]",
         {{20, "/Parent 10 0 R"}, {21, named + "/T(k)"}},
         "",
         "",
         ";- - 21 - -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string field = "<</FT/Btn/Ff 32768/T(f)/Opt[(0)(1)(2)]" + c.field + ">>";
        FormAtWork f(with_pages(c.first, c.second, {field}, c.objects));
        std::string result = widgets_of(f, f.field("f")) + ";";
        for (const uint32_t num : {10, 20, 21, 22, 23}) {
            const CPDFField* at = f.document.form().find(PDF_REF{num, 0});
            result += (num > 10 ? " " : "") + (at && at->m_widget ? std::to_string(at->m_widget->m_ref.num) : "-");
        }
        EXPECT_EQ(result, c.expected);
        f.document.fields_changed();
        EXPECT_FALSE(f.field("f").m_widget);
        result = widgets_of(f, f.field("f"));
        EXPECT_EQ(result + ";", std::string(c.expected).substr(0, result.size() + 1)) << "bound again";
    }
}

TEST(WidgetBinderTest, EveryWidgetFollowsAndKeepsItsGeneration)
{
    const std::string on = widget_states("on");
    const std::string text =
        with_pages("21 3 R", "", {"<</FT/Btn/T(f)/Kids[20 3 R]>>"}, {{20, on}, {21, on + "/Parent 10 0 R"}}, 3);
    FormAtWork f(text);
    ASSERT_TRUE(f.set("f", "on").ok());
    const std::string update = f.saved().substr(text.size());
    for (const char* head : {"20 3 obj\n", "21 3 obj\n"})
        EXPECT_NE(update.find(head), std::string::npos) << update;
    FormAtWork again(f.saved());
    EXPECT_EQ(again.entry(20, "AS") + again.entry(21, "AS") + again.entry(10, "V"), "/on/on/on");
}

TEST(WidgetBinderTest, ManyWidgets)
{
    constexpr uint32_t COUNT = 20000;
    std::string kids;
    std::map<uint32_t, std::string> objects;
    for (uint32_t num = 100; num < 100 + COUNT; ++num) {
        kids += std::to_string(num) + " 0 R ";
        objects[num] = "/Subtype/Widget/AS/Off" + std::string(num % 2 ? "/Parent 10 0 R" : "");
    }
    FormAtWork f(with_pages(kids, kids, {"<</FT/Btn/T(f)/Kids[" + kids + "]>>"}, objects));
    ASSERT_EQ(f.document.widgets_of(f.field("f")).size(), COUNT);
    uint32_t num = 100;
    for (const CPDFAnnotWidget* widget : f.document.widgets_of(f.field("f")))
        ASSERT_EQ(widget->m_ref.num, num++);
}
