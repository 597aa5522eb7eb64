#include <gmock/gmock.h>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* FORM = "/DA(/Helv 0 Tf 0 g)/DR<</Font<</Helv 30 0 R>>>>";
constexpr const char* FONT = "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>";

// A form on one page, saved with what was filled, opened again.
struct Drawn {
    Drawn(const std::vector<std::string>& fields, const std::string& more, const std::string& form = FORM)
        : f(build(fields, more, form))
    {
    }

    static std::string build(const std::vector<std::string>& fields, const std::string& more, const std::string& form)
    {
        PdfBuilder file;
        std::string annots;
        for (size_t i = 0; i < fields.size(); ++i) {
            if (fields[i].find("/Subtype") != std::string::npos)
                annots += std::to_string(10 + i) + " 0 R ";
        }
        file.form(fields, form).object(30, FONT);
        put_objects(file, 20, more);
        return file.object(2, "<</Type/Pages/Count 1/Kids[40 0 R]>>")
            .object(40, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Annots[" + annots + "20 0 R 21 0 R]>>")
            .table()
            .text;
    }

    FormAtWork saved() { return FormAtWork(f.saved()); }

    FormAtWork f;
};

// The stream that the widget `num` shows, for buttons in the state `state`: its dictionary, then its data.
std::string shown(FormAtWork& f, uint32_t num, const char* state = nullptr)
{
    CPDFXRefTable& xref = f.document.xref();
    CPDFObj widget;
    xref.get_entity(widget, {num, 0});
    const CPDFEntryView ap(&xref, widget.dictionary() ? widget.dict->get_item("AP") : nullptr);
    const CPDFObj* normal = ap->dictionary() ? ap->dict->get_item("N") : nullptr;
    const CPDFEntryView states(&xref, state ? normal : nullptr);
    if (state)
        normal = states->dictionary() ? states->dict->get_item(state) : nullptr;
    if (!normal || normal->type != PDF_OBJ_REF)
        return "-";
    CPDFObj stream;
    xref.get_entity(stream, normal->ref);
    return std::to_string(normal->ref.num) + " " + show_object(stream) + " " + stream_data(xref, normal->ref.num);
}

TEST(DrawingTest, EveryWidgetOfAFieldShowsItsValue)
{
    for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
        const std::string text =
            Drawn::build({"<</FT/Tx/T(f)/V(old)/RV(x)/Kids[20 0 R 21 0 R]>>",
                          "<</FT/Tx/T(other)/V(o)/Subtype/Widget/Rect[0 0 9 9]>>"},
                         "/Subtype/Widget/Parent 10 0 R/Rect[10 10 110 30]/AP<</N 31 0 R/D 31 0 R>>;"
                         "/Subtype/Widget/Parent 10 0 R/Rect[200 10 300 30]",
                         FORM);
        FormAtWork f(text, load);
        ASSERT_TRUE(f.set("f", "new").ok());
        FormAtWork again(f.saved());
        EXPECT_THAT(shown(again, 20), AllOf(HasSubstr("/Helv 30 0 R"), HasSubstr("/BBox [0 0 100 20]"),
                                            HasSubstr("/Tx BMC"), HasSubstr("(new) Tj")));
        EXPECT_EQ(shown(again, 21), shown(again, 20)) << "equal pictures are one stream";
        EXPECT_EQ(show_entry(again.document.xref(), 20, "AP").find("/D"), std::string::npos);
        EXPECT_EQ(shown(again, 11), "-") << "nobody touched it";
        EXPECT_EQ(again.entry(3, "NeedAppearances") + again.entry(10, "RV"), "--");
    }
}

TEST(DrawingTest, ChoicesShowTheTextsOfTheirOptions)
{
    Drawn d({"<</FT/Ch/T(c)/Ff 131072/Opt[[(a)(Apple)][(b)(Pear)]]/Subtype/Widget/Rect[0 0 90 20]>>",
             "<</FT/Ch/T(l)/TI 1/Opt[(one)(two)(three)]/Subtype/Widget/Rect[0 0 90 60]>>"},
            "");
    ASSERT_TRUE(d.f.set("c", "b").ok() && d.f.set("l", "three").ok());
    FormAtWork again = d.saved();
    EXPECT_THAT(shown(again, 10), HasSubstr("(Pear) Tj"));
    EXPECT_THAT(shown(again, 11), AllOf(HasSubstr("(two)"), HasSubstr("(three)"), Not(HasSubstr("(one)"))));
}

TEST(DrawingTest, ButtonsGetTheStatesTheyLack)
{
    Drawn d({"<</FT/Btn/T(check)/Subtype/Widget/Rect[0 0 9 9]/MK<</CA(8)/BC[0]>>>>",
             "<</FT/Btn/Ff 32768/T(radio)/Kids[20 0 R 21 0 R]>>"},
            "/Subtype/Widget/Parent 11 0 R/Rect[0 0 9 9];/Subtype/Widget/Parent 11 0 R/Rect[20 0 29 9]");
    ASSERT_TRUE(d.f.set("check", true).ok());
    ASSERT_TRUE(d.f.set("radio", "1").ok());
    FormAtWork again = d.saved();
    EXPECT_EQ(again.entry(10, "AS") + again.entry(11, "V") + again.entry(20, "AS") + again.entry(21, "AS"),
              "/Yes/1/Off/1");
    for (const char* state : {"Yes", "Off"})
        EXPECT_THAT(shown(again, 10, state), HasSubstr("/Subtype /Form"));
    EXPECT_NE(shown(again, 21, "1"), "-");
    ASSERT_TRUE(again.set("radio", "Yes").ok());
    EXPECT_EQ(again.entry(20, "AS") + again.entry(21, "AS"), "/Yes/Off");
    d.f.document.revert();
    ASSERT_TRUE(d.f.set("check", true).ok());
    FormAtWork second = d.saved();
    EXPECT_NE(shown(second, 10, "Yes"), "-") << "the next copy of a template has pictures, too";
}

TEST(DrawingTest, TheRequestToViewersGoesOnceAllIsDrawn)
{
    const std::vector<std::string> fields = {"<</FT/Tx/T(f)/Subtype/Widget/Rect[0 0 90 20]>>",
                                             "<</FT/Tx/T(g)/V(rest)/Subtype/Widget/Rect[0 30 90 50]>>",
                                             "<</FT/Tx/T(h)/V(x)/Subtype/Widget/Rect[0 60 90 80]/AP<</N 30 0 R>>>>"};
    for (const bool draw : {true, false}) {
        Drawn d(fields, "", std::string(FORM) + "/NeedAppearances true");
        d.f.document.set_drawing(draw ? PDF_DRAWING::DRAW : PDF_DRAWING::LEAVE_TO_VIEWERS);
        EXPECT_EQ(d.f.saved().size(), d.f.document.size()) << "without a change nothing is drawn";
        ASSERT_TRUE(d.f.set("f", "1").ok());
        FormAtWork again = d.saved();
        EXPECT_EQ(again.entry(3, "NeedAppearances"), draw ? "-" : "true");
        EXPECT_EQ(shown(again, 10) == "-", !draw);
        EXPECT_EQ(shown(again, 11).find("(rest) Tj") == std::string::npos, draw ? false : true);
        EXPECT_EQ(again.entry(12, "AP"), "<< /N 30 0 R >>");
    }
}

TEST(DrawingTest, RevertedDocumentsDrawAnew)
{
    Drawn d({"<</FT/Tx/T(f)/DA(/Nowhere 9 Tf)/Subtype/Widget/Rect[0 0 90 20]>>"}, "");
    std::string first;
    for (const char* value : {"one", "two", "one"}) {
        ASSERT_TRUE(d.f.set("f", value).ok());
        const std::string saved = d.f.saved();
        FormAtWork again(saved);
        EXPECT_THAT(shown(again, 10), AllOf(HasSubstr("(" + std::string(value) + ") Tj"), HasSubstr("/Nowhere")));
        if (first.empty())
            first = saved;
        d.f.document.revert();
    }
    ASSERT_TRUE(d.f.set("f", "one").ok());
    EXPECT_EQ(d.f.saved(), first);
}

TEST(DrawingTest, WhatNoFontHasIsTold)
{
    Drawn d({"<</FT/Tx/T(f)/Subtype/Widget/Rect[0 0 90 20]>>"}, "");
    ASSERT_TRUE(d.f.set("f", "a\xF3\xBF\xBF\xB0").ok());  // U+FFFF0 is for private use
    FormAtWork again = d.saved();
    ASSERT_EQ(d.f.document.drawing_notes().size(), 1u);
    EXPECT_THAT(d.f.document.drawing_notes()[0], HasSubstr("field \"f\""));
    EXPECT_THAT(again.entry(10, "V"), HasSubstr("FEFF0061"));
}

TEST(FlattenTest, WidgetsBecomeContent)
{
    Drawn d({"<</FT/Tx/T(f)/DV(default)/Subtype/Widget/Rect[10 10 110 30]>>",
             "<</FT/Tx/T(hidden)/F 2/Subtype/Widget/Rect[10 40 110 60]/AP<</N 23 0 R>>>>"},
            "/Subtype/Link/Rect[0 0 5 5];/Subtype/Widget/Rect[0 0 9 9]");
    ASSERT_TRUE(d.f.set("f", "flat").ok());
    ASSERT_TRUE(d.f.document.flatten().ok());
    FormAtWork again = d.saved();
    EXPECT_FALSE(again.document.has_form());
    EXPECT_EQ(again.entry(40, "Annots"), "[20 0 R]");
    EXPECT_THAT(again.entry(40, "Resources"), AllOf(HasSubstr("/Fw1"), Not(HasSubstr("/Fw2"))));
    CPDFObj page;
    again.document.xref().get_entity(page, {40, 0});
    const CPDFEntryView contents(&again.document.xref(), page.dict->get_item("Contents"));
    ASSERT_TRUE(contents->array() && contents->arr->count == 2);
    EXPECT_EQ(stream_data(again.document.xref(), contents->arr->items[0].ref.num), "q\n");
    EXPECT_EQ(stream_data(again.document.xref(), contents->arr->items[1].ref.num),
              "\nQ\nq 1 0 0 1 10 10 cm /Fw1 Do Q\n");
}

TEST(DrawingTest, AllocationFailures)
{
    const std::string text = Drawn::build({"<</FT/Tx/T(f)/Subtype/Widget/Rect[0 0 90 20]>>"}, "", FORM);
    each_failed_allocation([&text](const auto& arm) {
        FormAtWork f(text);
        CPDFField& field = f.field("f");
        CPDFStatus status;
        std::vector<uint8_t> out;
        const bool failed = arm([&] {
            status = f.document.set_value(field, "x");
            if (status.ok())
                status = f.document.save(out);
        });
        EXPECT_EQ(status.ok(), !failed);
        EXPECT_TRUE(status.ok() || status.code == PDF_CODE::NO_MEMORY) << status.text;
        if (!status.ok())
            return;
        FormAtWork again(std::string(out.begin(), out.end()));
        EXPECT_NE(shown(again, 10), "-");
    });
}

}  // namespace
