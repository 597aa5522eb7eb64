#include <gmock/gmock.h>

#include "formats/apply_data.h"
#include "tests/document/fill_fixture.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A text field with scripts, each given as its event's key and its text: K, F, V or C. Objects of fields count from 10.
std::string text_field(const std::string& name, const std::vector<std::pair<std::string, std::string>>& scripts,
                       const std::string& more = "")
{
    std::string actions;
    for (const auto& [event, text] : scripts)
        actions += "/" + event + "<</S/JavaScript/JS(" + text + ")>>";
    return "/FT/Tx/T(" + name + ")/AA<<" + actions + ">>/Subtype/Widget/Rect[0 0 150 20]" + more;
}

// Fields are the entries of their dictionaries, as are the further objects, which count from 20.
std::string form(std::vector<std::string> fields, const std::string& order = "", const std::string& more = "")
{
    for (std::string& field : fields)
        field = "<<" + field + ">>";
    PdfBuilder file;
    file.form(fields, "/DA(/Helv 12 Tf 0 g)/DR<</Font<</Helv 30 0 R>>>>" + order);
    return put_objects(file, 20, more)
        .object(2, "<</Type/Pages/Count 1/Kids[40 0 R]>>")
        .object(30, "<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>")
        .object(40, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]/Annots[10 0 R 11 0 R 12 0 R]>>")
        .table()
        .text;
}

const std::pair<std::string, std::string> MONEY_KEYS = {"K", "AFNumber_Keystroke(2, 0, 0, 0, '$', true);"};
const std::pair<std::string, std::string> MONEY = {"F", "AFNumber_Format(2, 0, 1, 0, '$', true);"};

std::string sum_of(const std::string& names)
{
    return "AFSimple_Calculate('SUM', new Array(" + names + "));";
}

// Two amounts and their total.
std::string invoice(const std::string& total_more = "")
{
    return form({text_field("a", {MONEY_KEYS, MONEY}), text_field("b", {{"V", "AFRange_Validate(true, 0, true, 99);"}}),
                 text_field("total", {{"C", sum_of("'a','b'")}, MONEY}, total_more)},
                "/CO[12 0 R]");
}

TEST(ComputeTest, ValuesAreCheckedFormattedAndAddedUp)
{
    FormAtWork f(invoice("/Ff 1"));
    ASSERT_TRUE(f.set("a", "1234.5").ok());
    ASSERT_TRUE(f.set("b", "2").ok());
    EXPECT_THAT(f.memory(), AllOf(HasSubstr("a=(1234.5)"), HasSubstr("b=(2)"), HasSubstr("total=(1236.5)")));
    EXPECT_EQ(f.document.shown_text(f.field("a")), "$1,234.50");
    EXPECT_EQ(f.document.shown_text(f.field("b")), std::nullopt);
    FormAtWork again(f.saved());
    EXPECT_EQ(again.entry(12, "V"), "(1236.5)");
    EXPECT_THAT(again.entry(12, "AP"), HasSubstr("/N "));
    EXPECT_EQ(again.document.shown_text(again.field("total")), "$1,236.50");
}

TEST(ComputeTest, WhatAScriptRefusesIsRefusedInItsWords)
{
    FormAtWork f(invoice());
    const std::string before = f.memory();
    CPDFStatus status = f.set("b", "100");
    EXPECT_EQ(status.code, PDF_CODE::WRONG_KIND);
    EXPECT_EQ(status.text, "field \"b\" does not take \"100\": Invalid value: must be greater than or equal to 0 and "
                           "less than or equal to 99.");
    EXPECT_THAT(f.set("a", "much").text, HasSubstr("field \"a\" does not take \"much\": "));
    EXPECT_EQ(f.memory(), before);
    EXPECT_TRUE(f.set("b", "").ok()) << "an empty value always commits";
    f.document.set_scripts(PDF_SCRIPTS::OFF);
    EXPECT_TRUE(f.set("b", "100").ok());
    EXPECT_EQ(f.entry(12, "V"), "(0)");
}

TEST(ComputeTest, AComboBoxIsCheckedAndShownByItsTexts)
{
    std::string field =
        text_field("pick", {{"V", "AFRange_Validate(true, 1, true, 5);"}, MONEY}, "/Ff 393216/Opt[[(x)(4)][(y)(9)]]");
    FormAtWork combo(form({field.replace(field.find("/Tx"), 3, "/Ch")}));
    EXPECT_THAT(combo.set("pick", "y").text, HasSubstr("less than or equal to 5"));
    ASSERT_TRUE(combo.set("pick", "x").ok());
    EXPECT_EQ(combo.entry(10, "V"), "(x)");
    EXPECT_EQ(combo.document.shown_text(combo.field("pick")), "$4.00");
}

TEST(ComputeTest, CalculationsFollowOneAnotherInAnyOrder)
{
    // In the wrong order of "CO", through a group and down from a field above.
    FormAtWork f(form({text_field("grand", {{"C", sum_of("'sub','sub'")}}),
                       text_field("sub", {{"C", sum_of("'line'")}}), "/T(line)/Kids[20 0 R 21 0 R]"},
                      "/CO[10 0 R 11 0 R]", "/FT/Tx/T(x)/Parent 12 0 R/V(2);/FT/Tx/T(y)/Parent 12 0 R"));
    ASSERT_TRUE(f.set("line.y", "3").ok());
    EXPECT_THAT(f.memory(), AllOf(HasSubstr("sub=(5)"), HasSubstr("grand=(10)")));
    EXPECT_THAT(f.document.calculation_notes(), IsEmpty());
    ASSERT_TRUE(f.document.reset().ok());
    EXPECT_THAT(f.memory(), AllOf(HasSubstr("sub=(0)"), HasSubstr("grand=(0)")));
}

TEST(ComputeTest, ACircleIsEndedAndTold)
{
    FormAtWork f(
        form({text_field("a", {{"C", sum_of("'b','c'")}}), text_field("b", {{"C", sum_of("'a','c'")}}), "/FT/Tx/T(c)"},
             "/CO[10 0 R 11 0 R]"));
    ASSERT_TRUE(f.set("c", "1").ok());
    EXPECT_THAT(f.document.calculation_notes(), ElementsAre(HasSubstr("in a circle")));
    // A field that adds to itself does so once for each value that is set.
    FormAtWork counter(form({text_field("n", {{"C", sum_of("'n','c'")}}), "/FT/Tx/T(c)"}, "/CO[10 0 R]"));
    ASSERT_TRUE(counter.set("c", "1").ok());
    EXPECT_THAT(counter.memory(), HasSubstr("n=(1)"));
    ASSERT_TRUE(counter.set("c", "2").ok());
    EXPECT_THAT(counter.memory(), HasSubstr("n=(3)"));
    EXPECT_THAT(counter.document.calculation_notes(), IsEmpty());
}

TEST(ComputeTest, CalculatedValuesThatCanNotBeStoredAreTold)
{
    const auto calculated = [](const std::string& more,
                               const std::vector<std::pair<std::string, std::string>>& scripts) {
        FormAtWork f(form({text_field("t", scripts, more), "/FT/Tx/T(c)"}, "/CO[10 0 R]"));
        EXPECT_TRUE(f.set("c", "12").ok());
        EXPECT_EQ(f.entry(10, "V"), "-");
        EXPECT_EQ(f.document.calculation_notes().size(), 1U);
        return f.document.calculation_notes().front();
    };
    EXPECT_THAT(calculated("/MaxLen 1", {{"C", sum_of("'c'")}}),
                AllOf(HasSubstr("the calculated value is not stored: field \"t\""), HasSubstr("1 character")));
    EXPECT_THAT(calculated("", {{"C", sum_of("'c'")}, {"V", "AFRange_Validate(false, 0, true, 9);"}}),
                HasSubstr("less than or equal to 9"));
}

TEST(ComputeTest, OtherScriptsAreCountedOnce)
{
    FormAtWork f(form({text_field("a", {{"F", "event.value = 'x'"}, {"V", "event.rc = false"}}),
                       text_field("t", {{"C", "event.value = 1"}})},
                      "/CO[11 0 R]"));
    ASSERT_TRUE(f.set("a", "1").ok());
    ASSERT_TRUE(f.set("a", "2").ok());
    f.saved();
    EXPECT_EQ(f.document.skipped_scripts(), 3U);
    EXPECT_EQ(f.entry(11, "V"), "-");
}

TEST(ComputeTest, RevertAndASecondRowLeaveNothingBehind)
{
    FormAtWork f(invoice());
    ASSERT_TRUE(f.set("a", "5").ok());
    const std::string first = f.saved();
    f.document.revert();
    EXPECT_EQ(f.memory().find("(5)"), std::string::npos);
    ASSERT_TRUE(f.set("a", "5").ok());
    EXPECT_EQ(f.saved(), first);
}

// Names that only single fields are loaded for do not keep others from being calculated.
TEST(ComputeTest, FormsOpenedForSingleFieldsAreCalculatedToo)
{
    FormAtWork f(invoice(), PDF_LOAD::NAMED_FIELDS);
    PDF_FILL_PLAN plan;
    ASSERT_TRUE(f.document.check_value(f.field("a"), "7", PDF_FILL::RESPECT_READ_ONLY, plan).ok());
    ASSERT_TRUE(f.document.apply(plan).ok());
    std::vector<CPDFField*> changed;
    ASSERT_TRUE(f.document.calculate(&changed).ok());
    EXPECT_THAT(changed, ElementsAre(&f.field("total")));
    EXPECT_EQ(FormAtWork(f.saved()).entry(12, "V"), "(7)");
}

// What a questionnaire does: buttons whose states are numbers in a row, and what they count for in "Opt".
TEST(ComputeTest, ButtonsCountForWhatTheyExport)
{
    FormAtWork f(form({text_field("t", {{"C", sum_of("'q'")}}), text_field("x", {}), text_field("y", {}),
                       "/FT/Btn/Ff 49152/T(q)/Opt[(10)(20)]/Kids[20 0 R 21 0 R]"},
                      "/CO[10 0 R]", "/Parent 13 0 R" + widget_states("0") + ";/Parent 13 0 R" + widget_states("1")));
    ASSERT_TRUE(f.set("q", "20").ok());
    EXPECT_THAT(f.memory(), AllOf(HasSubstr("q=/1"), HasSubstr("t=(20)")));
}

TEST(ComputeTest, ValuesThatAreSetTogetherAreCheckedTogether)
{
    FormAtWork f(
        form({text_field("from", {}), text_field("to", {{"V", "if (event.value < getField('from').value) {"
                                                              " app.alert('too early'); event.rc = false; }"}})}));
    f.document.set_scripts(PDF_SCRIPTS::ALL);
    ASSERT_TRUE(f.set("from", "2").ok());
    const auto plan = [&f](const char* from, const char* to) {
        return plan_data(f.document,
                         {{"from", from, PDF_WORDS::STATES_FIRST, true}, {"to", to, PDF_WORDS::STATES_FIRST, true}},
                         PDF_FILL::RESPECT_READ_ONLY);
    };
    EXPECT_TRUE(refusals_of(plan("1", "1")).ok());
    EXPECT_EQ(refusals_of(plan("4", "3")).text, "field \"to\" does not take \"3\": too early");
    EXPECT_TRUE(f.set("to", "3").ok()) << "what was only asked is forgotten";
}

TEST(ComputeTest, EditsOfTheFormAreSeen)
{
    FormAtWork f(
        form({text_field("a", {}), text_field("t", {{"C", sum_of("'a','b'")}}), text_field("b", {})}, "/CO[11 0 R]"));
    ASSERT_TRUE(f.set("a", "1").ok());
    ASSERT_TRUE(f.set("b", "1").ok());
    ASSERT_TRUE(f.document.remove_field(f.field("b")).ok());
    ASSERT_TRUE(f.set("a", "5").ok());
    EXPECT_THAT(f.memory(), HasSubstr("t=(5)"));
    ASSERT_TRUE(f.document.remove_field(f.field("t")).ok());
    EXPECT_TRUE(f.set("a", "6").ok());
}

}  // namespace
