#include "engine/annot_widget.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {
// A button field, object 2, with three kids, objects 3 to 5, each its own widget with an on state a, b, c.
class ButtonFixture : public FormFixture {
public:
    explicit ButtonFixture(const std::string& group, const std::string& second = "")
        : FormFixture("/Fields [2 0 R]", "/T (g) /Kids [3 0 R 4 0 R 5 0 R] " + group + ";" + widget('a') + ";" +
                                             widget('b', second) + ";" + widget('c'))
    {
        for (uint32_t i = 0; i < 3; ++i) {
            EXPECT_EQ(widgets[i].load(&doc.xref, {3 + i, 0}), 1);
            field(3 + i).m_widget = &widgets[i];
        }
    }

    // "AS" of the widgets in the document, one letter each, and then "V" of the objects 2 to 5.
    std::string state()
    {
        std::string shown, values;
        for (uint32_t num = 2; num <= 5; ++num) {
            const std::string as = doc.entry(num, "AS");
            values += " " + doc.entry(num, "V");
            shown += as == "-" ? as : as.substr(1, 1);
        }
        return shown.substr(1) + values;
    }

    CPDFAnnotWidget widgets[3];

private:
    static std::string widget(char on, const std::string& more = "")
    {
        return std::string("/Subtype /Widget /Parent 2 0 R /AP << /N << /Off 9 0 R /") + on + " 9 0 R >> >> /AS /" +
               on + " " + more;
    }
};
}  // namespace

// What the field itself shows is the caller's, who may have been there first.
TEST(FieldButtonTest, CheckValueUnchecksTheWidgetsBeside)
{
    const struct {
        const char *label, *group, *second;
        uint32_t num;
        const char *state, *expected;
    } cases[] = {
        {"kid of a check box", "/FT /Btn", "", 4, "b", "ObO - - /b -"},
        {"off touches no widget", "/FT /Btn", "", 4, "Off", "abc - - /Off -"},
        {"a kind of its own", "/FT /Btn", "/FT /Btn", 4, "b", "abc - - /b -"},
        {"flags of its own", "/FT /Btn", "/Ff 2", 4, "b", "abc - - /b -"},
        {"no parent", "/FT /Btn", "", 2, "a", "abc /a - - -"},
        {"radio", "/FT /Btn /Ff 32768", "", 4, "b", "abc - - - -"},
        {"text", "/FT /Tx", "", 4, "b", "abc - - - -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ButtonFixture f(c.group, c.second);
        f.field(c.num).set_check_value(c.state);
        EXPECT_EQ(f.state(), c.expected);
        const CPDFObj& value = f.field(c.num).m_value;
        const std::string stored = "/" + std::string(c.state);
        EXPECT_EQ(show_object(value), f.doc.xref.changed_count() ? stored : "null");
        EXPECT_EQ(f.field(c.num).get_check_value(), f.doc.xref.changed_count() && stored.size() == 2);
    }
    // A slot without a kid or a kid without a widget is passed over; without the dictionary nothing happens at all.
    ButtonFixture f("/FT /Btn");
    f.field(3).m_widget = nullptr;
    f.doc.put_free(4);
    f.field(4).set_check_value("b");
    EXPECT_EQ(f.state(), "a-c - - - -");
    EXPECT_EQ(f.field(4).m_value.type, PDF_OBJ_NULL);
    delete f.field(2).m_kids[1];
    f.field(2).m_kids[1] = nullptr;
    f.field(5).set_check_value("c");
    EXPECT_EQ(f.state(), "a-c - - - /c");
}

TEST(FieldButtonTest, RadioTurnsTheOthersOff)
{
    for (const char* kind : {"/FT /Btn /Ff 32768", "/FT /Btn", "/FT /Tx", ""}) {
        ButtonFixture f(kind);
        f.field(2).set_radio(&f.widgets[1]);
        EXPECT_EQ(f.state(), "ObO /b - - -") << kind;
        EXPECT_EQ(show_object(f.field(2).m_value), "/b") << kind;
    }
    ButtonFixture f("/FT /Btn /Ff 32768");
    f.field(3).m_widget = nullptr;
    f.field(2).set_radio(&f.widgets[2]);
    EXPECT_EQ(f.state(), "aOc /c - - -");
    // The memory and the widgets change without the dictionary, too.
    f.doc.put_free(2);
    f.field(2).set_radio(&f.widgets[1]);
    EXPECT_EQ(f.state(), "abO - - - -");
    EXPECT_EQ(show_object(f.field(2).m_value), "/b");
    CPDFAnnotWidget unbound;
    f.field(2).set_radio(&unbound);
    EXPECT_EQ(show_object(f.field(2).m_value), "/") << "no on state";
}

// A state that can't be copied is a name without a text, and is not stored.
TEST(FieldButtonTest, StatesWithoutMemory)
{
    each_failed_allocation([](const auto& arm) {
        ButtonFixture f("/FT /Btn /Ff 32768 /V /a", "/FT /Btn /Ff 0 /V /a");
        arm([&f] {
            f.field(2).set_radio(&f.widgets[1]);
            f.field(4).set_check_value("b");
        });
        for (const uint32_t num : {2, 4}) {
            const CPDFObj& value = f.field(num).m_value;
            EXPECT_TRUE(value.type == PDF_OBJ_NAME && (!value.name || value.is_name("a") || value.is_name("b")));
            const std::string stored = f.doc.entry(num, "V");
            EXPECT_TRUE(stored == "/a" || (stored == "/b" && value.is_name("b"))) << stored;
        }
    });
}

TEST(FieldButtonTest, RadioValueOfOneWidget)
{
    const struct {
        const char *group, *kid;
        const char* expected;  // for the widgets a, b and those with the second state b only, and with none
    } cases[] = {
        {"/FT /Btn /Ff 32768 /V /b", "", "0110"},
        {"/FT /Btn /Ff 32768 /V /b", "/V /a", "1000"},
        {"/FT /Btn /Ff 32768 /V /b", "/V (a)", "0110"},
        {"/FT /Tx /V /b", "", "0000"},
        {"/V /b", "", "0000"},
    };
    for (const auto& c : cases) {
        ButtonFixture f(c.group, c.kid);
        CPDFAnnotWidget second;
        parse_object("<< /AS /b >>", f.doc.xref.get_xref2(8, 0)->obj);
        ASSERT_EQ(second.load(&f.doc.xref, {8, 0}), 1);
        CPDFAnnotWidget none;
        std::string results;
        for (CPDFAnnotWidget* widget : {&f.widgets[0], &f.widgets[1], &second, &none})
            results += std::to_string(f.field(4).get_radio_value(widget));
        EXPECT_EQ(results, c.expected) << c.group << c.kid;
    }
    // Only one level of parents is asked.
    FormFixture f("/Fields [2 0 R]", "/FT /Btn /V /b /Kids [3 0 R]; /Kids [4 0 R]; /T (l)");
    ButtonFixture other("/FT /Btn");
    EXPECT_EQ(f.field(3).get_radio_value(&other.widgets[1]), 1);
    EXPECT_EQ(f.field(4).get_radio_value(&other.widgets[1]), 0);
}
