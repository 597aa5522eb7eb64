#include "document/lookup/widget_binder.h"

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

// A document with the field, object 10, two pages, whose annotations are separated by ';', and objects from 20 on.
std::string with_pages(const std::string& field, const std::string& pages, const std::string& objects, uint32_t gen = 0)
{
    const std::vector<std::string> annotations = split(pages + "; ", ';');
    PdfBuilder file;
    file.form({"<<" + field + ">>"}).object(2, "<</Type/Pages/Kids[5 0 R 6 0 R]>>");
    file.object(5, "<</Type/Page/Annots[" + annotations[0] + "]>>")
        .object(6, "<</Type/Page/Annots[" + annotations[1] + "]>>");
    return put_objects(file, 20, objects, gen).table().text;
}
}  // namespace

TEST(WidgetBinderTest, WidgetsInTheOrderOfKids)
{
    const std::string a = widget_states("a");
    const struct {
        const char* label;
        std::string field;    // object 10
        std::string objects;  // 20, 21, ...; "w" is a widget, "p" one that names the field as its parent
        const char* pages;
        const char* expected;  // widgets of the field, then those bound as m_widget of objects 10, 20 to 23
    } cases[] = {
        {"kids with a parent", "/Kids[21 0 R 20 0 R]", "p;p", "20 0 R 21 0 R", "21 20 ;- 20 21 - -"},
        {"mixed, odd entries", "/Kids[20 0 R null 22 0 R 9 0 R 21 0 R 22 0 R 20 0 R]", "p;w;p", "",
         "20 22 21 ;21 20 21 22 -"},
        {"mixed, elsewhere", "/Kids 23 0 R", "p;w;w;[21 0 R 20 0 R 22 0 R]", "", "21 20 22 ;21 20 21 21 -"},
        {"merged and kids", a + "/Kids[10 0 R 20 0 R]", "p", "", "10 20 ;10 20 - - -"},
        {"kids of kids", "/Kids[20 0 R 23 0 R]", "/Parent 10 0 R/Kids[21 0 R 22 0 R];/Parent 20 0 R" + a + ";w;w", "",
         "21 22 23 ;23 22 21 22 23"},
        {"on no page", "/Kids[20 0 R]", "p", "", "20 ;- 20 - - -"},
        {"known to the page only", "/Kids[20 0 R]", "p;p;w", "22 0 R 21 0 R;20 0 R", "20 21 ;21 20 - - -"},
        {"no widgets of it", "/Kids[20 0 R]",
         "p;/Subtype/Link/Parent 10 0 R;/T(own)/Parent 10 0 R" + a + ";/Parent 9 0 R" + a,
         "21 0 R 22 0 R 23 0 R 99 0 R", "20 ;- 20 - 22 -"},
        {"kids that are no widgets", "/Kids[20 0 R 21 0 R]", "/Parent 10 0 R;/T(k)/Parent 10 0 R" + a, "",
         ";- - 21 - -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        std::string objects;
        for (const std::string& object : split(c.objects, ';'))
            objects += (object == "w" ? a : object == "p" ? a + "/Parent 10 0 R" : object) + ";";
        FormAtWork f(with_pages("/FT/Btn/Ff 32768/T(f)" + c.field, c.pages, objects));
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

// Widgets of a field that "Fields" lists, too, are its widgets wherever they stand; one of another kind is not.
TEST(WidgetBinderTest, WidgetsThatAreListedAsFields)
{
    for (const char* fields :
         {"10 0 R 20 0 R 21 0 R 22 0 R", "20 0 R 22 0 R 21 0 R 10 0 R", "20 0 R 10 0 R 22 0 R 21 0 R"}) {
        PdfBuilder file;
        file.form({"<</FT/Btn/T(agree)/Kids[20 0 R 21 0 R 22 0 R]>>"})
            .object(3, "<</Fields[" + std::string(fields) + "]>>");
        const std::string on = widget_states("on");
        FormAtWork f(put_objects(file, 20, on + ";" + on + "/FT/Btn;/Subtype/Widget/FT/Tx").table().text);
        EXPECT_EQ(widgets_of(f, f.field("agree")), "20 21 ") << fields;
    }
}

TEST(WidgetBinderTest, EveryWidgetFollowsAndKeepsItsGeneration)
{
    const std::string on = widget_states("on");
    const std::string text = with_pages("/FT/Btn/T(f)/Kids[20 3 R]", "21 3 R", on + ";" + on + "/Parent 10 0 R", 3);
    FormAtWork f(text);
    ASSERT_TRUE(f.set("f", "on").ok());
    for (const char* head : {"20 3 obj\n", "21 3 obj\n"})
        EXPECT_NE(f.saved().find(head, text.size()), std::string::npos);
    FormAtWork again(f.saved());
    EXPECT_EQ(again.entry(20, "AS") + again.entry(21, "AS") + again.entry(10, "V"), "/on/on/on");
}
