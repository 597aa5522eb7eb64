#include "engine/annot_widget.h"
#include "tests/forms/form_fixture.h"

namespace {
// A form whose fields, in tree order, have one widget each: their own dictionary.
class ResetFixture : public FormFixture {
public:
    explicit ResetFixture(const std::string& objects, const std::string& fields = "2 0 R")
        : FormFixture("/Fields [" + fields + "]", objects)
    {
        for_each_field(form, [this](CPDFField& at) {
            widgets.push_back(std::make_unique<CPDFAnnotWidget>());
            widgets.back()->load(&doc.xref, at.m_ref);
            at.m_widget = widgets.back().get();
        });
    }

    // What the widgets were told to show: a text in hexadecimal or parentheses, then an option.
    std::string shown() const
    {
        std::string all;
        for (const auto& widget : widgets) {
            CPDFObj text;
            text.set_string(widget->m_text.buf, widget->m_text.len);
            all += (widget->m_text.buf ? show_object(text) : "-") +
                   (widget->m_choice >= 0 ? std::to_string(widget->m_choice) : "") + " ";
        }
        return all;
    }

    std::vector<std::unique_ptr<CPDFAnnotWidget>> widgets;
};

const std::string BUTTON = "/AP << /N << /Off 9 0 R /a 9 0 R >> >> ";

}  // namespace

TEST(FieldResetTest, EachKind)
{
    const struct {
        const char* label;
        std::string field;
        const char* shown;
        std::string stored;  // part of it, "" when the dictionary stays
    } cases[] = {
        {"text", "/FT /Tx /DV (abc) /V (v)", "(abc) ", ""},
        {"check box on", "/FT /Btn /DV /x /V /Off " + BUTTON, "- ", "/AS /a"},
        {"check box without default", "/FT /Btn /AS /a " + BUTTON, "- ", "/AS /Off"},
        {"radio", "/DV /2 /FT /Btn /Ff 32768 /V /b", "- ", "<< /DV /2 /FT /Btn /Ff 32768 /V /2 >>"},
        {"combo by text", "/FT /Ch /Ff 131072 /DV (Two) /Opt [[(1) (One)] [(2) (Two)]]", "-1 ", ""},
        {"combo by value", "/FT /Ch /Ff 131072 /DV (2) /Opt [[(1) (One)] [(2) (Two)]]", "- ", ""},
        {"empty default of single strings", "/FT /Ch /Ff 131072 /DV () /Opt [[(b) (B)] (a)]", "-1 ", ""},
        {"kids after the field", "/FT /Tx /DV (p) /Kids [3 0 R]; /DV (k); /DV (other)", "(p) (k) ", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        ResetFixture f(c.field);
        const std::string value = show_object(f.field(2).m_value);
        const std::string before = f.doc.show(2);
        f.field(2).reset();
        EXPECT_EQ(f.shown(), c.shown);
        EXPECT_NE(f.doc.show(2).find(c.stored), std::string::npos) << f.doc.show(2);
        EXPECT_EQ(f.doc.show(2) == before, c.stored.empty());
        EXPECT_EQ(show_object(f.field(2).m_value) == value, !(f.field(2).m_flags & FIELD_RADIO));
    }
}

TEST(FieldResetTest, RadioTellsItsKids)
{
    const std::string kid = "/Parent 2 0 R /AP << /N << /";
    const std::string kids = ";" + kid + "1 9 0 R >> >>;" + kid + "2 9 0 R >> >> /V /2; /Parent 2 0 R /AS /2";
    for (const auto& [entries, on] : {std::pair("/DV /2", " /2 /2"), {"", " /Off /Off"}, {"/DV (2)", " /Off /Off"}}) {
        SCOPED_TRACE(entries);
        ResetFixture f(std::string("/FT /Btn /Ff 32768 /V /1 /Kids [3 0 R 4 0 R 5 0 R] ") + entries + kids);
        f.field(2).reset();
        std::string shown;
        for (uint32_t num = 3; num <= 5; ++num)
            shown += " " + f.doc.entry(num, "AS");
        EXPECT_EQ(shown, std::string(" /Off") + on);
        EXPECT_EQ(f.doc.entry(4, "V"), "-") << "a kid without a default ends without a value";
    }
}

TEST(FieldResetTest, ActionSelectsFields)
{
    const struct {
        const char* fields;
        int flags;
        const char* shown;
    } cases[] = {
        {nullptr, 0, "(a) (b) (c) "},       {"[]", 0, "(a) (b) (c) "},
        {"[(none)]", 1, "(a) (b) (c) "},    {"[(b) /a 4 (x.y) << >>]", 0, "- (b) (c) "},
        {"[(b.c) 2 0 R]", 2, "(a) - (c) "}, {"[9 0 R 99 0 R]", 0, "(a) - - "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fields ? c.fields : "null");
        ResetFixture f("/FT /Tx /T (a) /DV (a) /Kids [9 0 R]; /FT /Tx /T (b) /DV (b) /Kids [4 0 R]; /T (c) /DV (c);"
                       "; ; ; ; /Subtype /Widget",
                       "null 2 0 R 3 0 R");
        CPDFObj fields;
        if (c.fields)
            parse_object(c.fields, fields);
        f.form.reset(fields.array(), c.flags);
        EXPECT_EQ(f.shown(), c.shown);
    }
}

TEST(FieldResetTest, RemovedChild)
{
    for (const auto& [kids, left] : {std::pair("[5 0 R 99 0 R 3 0 R 7 4 0 R]", "[5 0 R 99 0 R 3 0 R 7]"),
                                     {"6 0 R", "[3 0 R 5 0 R]"},
                                     {"[3 0 R 4 0 R 5 0 R 4 0 R]", "[3 0 R 5 0 R]"}}) {
        SCOPED_TRACE(kids);
        FormFixture f("/Fields [8 0 R 2 0 R 7 0 R]",
                      std::string("/T (m) /Parent 8 0 R /Kids ") + kids +
                          "; /T (a); /T (b); /Subtype /Widget; [3 0 R 4 0 R 5 0 R]; /T (u);"
                          "/T (t) /Kids [2 0 R]");
        CPDFField* child = &f.field(4);
        EXPECT_EQ(f.field(7).remove_child(child), 0);
        EXPECT_EQ(f.field(8).remove_child(child), 1);
        EXPECT_EQ(shape_of(f.field(2)), "m*(a)");
        EXPECT_EQ(f.doc.entry(2, "Kids"), left);
        EXPECT_EQ(f.doc.xref.changed_count(), 1);
        // Without "Kids" in the document nothing changes.
        f.doc.put_free(8);
        EXPECT_EQ(f.field(8).remove_child(&f.field(2)), 1);
        EXPECT_EQ(f.field(8).m_kid_cnt, 1);
    }
}
