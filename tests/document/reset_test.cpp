#include "forms/acro_form.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {
// "V" and "I" of the objects 10 to 13, and "AS" of the objects 20 to 22.
std::string state_of(FormAtWork& f)
{
    std::string state;
    for (uint32_t num = 10; num < 14; ++num) {
        const std::string indices = f.entry(num, "I");
        state += f.entry(num, "V") + (indices == "-" ? "" : "#" + indices) + " ";
    }
    for (uint32_t num = 20; num < 23; ++num)
        state += f.entry(num, "AS");
    return state;
}
}  // namespace

TEST(ResetTest, ValuesBecomeTheDefaults)
{
    const std::string options = "/FT/Ch/T(c)/Opt[[(1)(One)][(2)(Two)][(3)(Three)]]";
    const std::string button = "/FT/Btn/T(b)/Kids[20 0 R 21 0 R]";
    const std::string kids = "/Parent 10 0 R/Subtype/Widget/V/k/AS/a/AP<</N<</a 4 0 R>>>>;"
                             "/Parent 10 0 R/Subtype/Widget/AS/Off/AP<</N<</b 4 0 R>>>>";
    const struct {
        const char* label;
        std::string field, kids;
        const char* expected;
        bool draws;  // whether viewers are asked to
    } cases[] = {
        {"text", "/FT/Tx/T(t)/V(v)/RV(r)/DV(d)", "", "(d) - - - ---", true},
        {"default in a stream", "/FT/Tx/T(t)/V(v)/DV 5 0 R", "", "5 0 R - - - ---", true},
        {"kids without a name", "/FT/Tx/T(t)/DV(d)/V(v)/Kids[20 0 R]", "/Parent 10 0 R/Subtype/Widget/V(k)/AS/x",
         "(d) - - - /x--", true},
        {"check box", button + "/V/a/DV/b", kids, "/b - - - /Off/b-", false},
        {"check box, another name", button + "/V/b/DV/Yes", kids, "/a - - - /a/Off-", false},
        {"radio group, export value", button + "/Ff 32768/V/a/DV/Two/Opt[(One)(Two)]", kids, "/b - - - /Off/b-", false},
        {"radio group under a text", "/T(g)/V()/Kids[20 0 R]", "/Parent 10 0 R/FT/Btn/Ff 32768/T(r)", "() - - - ---",
         false},
        {"signature", "/FT/Sig/T(s)/V(x)/DV(y)", "", "(x) - - - ---", false},
        {"combo", options + "/Ff 131072/V(1)/I[0]/DV(2)", "", "(2)#[1] - - - ---", true},
        {"combo with free text", options + "/Ff 393216/V(1)/I[0]/DV(other)", "", "(other) - - - ---", true},
        {"list", options + "/Ff 2097152/V(2)/I[1]/DV[(3)(One)(3)]", "", "[(1) (3)]#[0 2] - - - ---", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        PdfBuilder file = begin_form({c.field}, c.kids).stream(5, "", "long text");
        FormAtWork f(file.table().text);
        f.document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);
        EXPECT_TRUE(f.document.reset().ok());
        EXPECT_EQ(state_of(f), c.expected);
        EXPECT_EQ(f.entry(10, "RV"), "-");
        EXPECT_EQ(f.entry(20, "V"), "-");
        EXPECT_EQ(f.entry(3, "NeedAppearances"), c.draws ? "true" : "-");
        FormAtWork again(f.saved());
        EXPECT_EQ(again.memory(), f.memory());
        f.document.revert();
        EXPECT_EQ(f.memory(), FormAtWork(file.text).memory());
    }
}

TEST(ResetTest, InheritedDefaultsAndChosenFields)
{
    const std::string file =
        form_of({"/FT/Tx/T(a)/DV(d)/Kids[20 0 R 21 0 R]", "/FT/Tx/T(b)/V(over)/Kids[22 0 R]", "/FT/Tx/T(c)/V(c)/DV(x)"},
                "/T(k)/Parent 10 0 R/V(v);/T(l)/Parent 10 0 R/DV(own)/V(v);/T(m)/Parent 11 0 R/V(v)");
    const struct {
        std::vector<const char*> names;
        const char* values;  // of a, a.k, a.l, b, b.m, c
    } cases[] = {
        {{}, "- (v) (v) (over) (v) (c) "},
        {{"a"}, "- (d) (own) (over) (v) (c) "},
        {{"a.l", "c", "a.l"}, "- (v) (own) (over) (v) (x) "},
        {{"a.k", "a", "b.m"}, "- (d) (own) (over) () (c) "},
        {{"b"}, "- (v) (v) - - (c) "},
    };
    for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.values);
            FormAtWork f(file, load);
            std::vector<CPDFField*> fields;
            for (const char* name : c.names)
                fields.push_back(&f.field(name));
            EXPECT_TRUE(f.document.reset(fields).ok());
            std::string values;
            for (const uint32_t num : {10, 20, 21, 11, 22, 12})
                values += f.entry(num, "V") + " ";
            EXPECT_EQ(values, c.values);
            FormAtWork again(f.saved());
            for (CPDFField* field : fields)
                EXPECT_EQ(show_object(field->m_value), show_object(again.field(full_name(*field)).m_value));
            EXPECT_TRUE(!c.names.empty() || f.saved() == file);
        }
    }
}

TEST(ResetTest, LockedAndOversizedFormsStayAsTheyAre)
{
    const std::string signed_form =
        form_of({"/FT/Tx/T(t)/V(v)/DV(d)", "/FT/Tx/T(u)/V(v)/DV(d)",
                 "/FT/Sig/T(s)/V<</ByteRange[0 1 2 3]/Contents<00>>>/Lock<</Action/Include/Fields[(t)]>>"});
    FormAtWork f(signed_form);
    EXPECT_EQ(f.document.reset().text, "field \"t\" is locked by the signature \"s\"");
    EXPECT_EQ(f.saved(), signed_form);
    EXPECT_TRUE(f.document.reset({&f.field("u")}).ok());
    EXPECT_TRUE(f.document.reset(PDF_FILL::FORCE).ok());
    EXPECT_EQ(f.entry(10, "V") + f.entry(11, "V") + f.entry(3, "NeedAppearances"), "(d)(d)-");

    // One default above many fields would be copied into each.
    std::string list;
    std::string kids;
    for (int i = 0; i < 3000; ++i) {
        list += std::to_string(20 + i) + " 0 R ";
        kids += "/T(k" + std::to_string(i) + ")/Parent 10 0 R;";
    }
    const std::string large = form_of({"/FT/Tx/T(t)/DV(" + std::string(100000, 'x') + ")/Kids[" + list + "]"}, kids);
    FormAtWork huge(large);
    EXPECT_EQ(huge.document.reset().code, PDF_CODE::LIMIT);
    EXPECT_EQ(huge.saved(), large);
}

TEST(ResetTest, AllocationFailures)
{
    const std::string file = form_of(
        {"/FT/Tx/T(t)/V(v)/DV(d)", "/FT/Btn/Ff 32768/T(b)/V/a/DV/b/Kids[20 0 R]", "/FT/Ch/T(c)/V(x)/DV(y)/Opt[(x)(y)]"},
        "/Parent 11 0 R/Subtype/Widget/AS/Off/AP<</N<</b 4 0 R>>>>");
    each_failed_allocation([&file](const auto& arm) {
        FormAtWork f(file);
        f.document.widgets_of(f.field("t"));
        CPDFStatus status;
        const bool failed = arm([&] { status = f.document.reset(); });
        EXPECT_TRUE(failed || status.ok());
        const std::string whole[][2] = {{"(v)", "(d)"}, {"/a", "/b"}, {"(x)", "(y)"}};
        for (uint32_t i = 0; i < 3; ++i) {
            const std::string value = f.entry(10 + i, "V");
            EXPECT_TRUE(value == whole[i][1] || (!status.ok() && value == whole[i][0])) << value;
        }
    });
}
