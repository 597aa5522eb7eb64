#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/tools/command_run.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

class CalculateTest : public testing::Test {
protected:
    // An amount, which is formatted and must be a number, a date, the double of the amount, and a field with a script of its
    // own.
    static std::string text()
    {
        const auto script = [](const char* event, const std::string& text) {
            return std::string("/") + event + "<</S/JavaScript/JS(" + text + ")>>";
        };
        const auto field = [](const std::string& name, const std::string& actions) {
            return "<</FT/Tx/T(" + name + ")/AA<<" + actions + ">>/Subtype/Widget/Rect[0 0 150 20]/P 9 0 R>>";
        };
        return pdf_of(
            {"<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>", "<</Type/Pages/Count 1/Kids[9 0 R]>>",
             "<</Fields[4 0 R 5 0 R 6 0 R 7 0 R]/CO[6 0 R]/DA(/Helv 12 Tf 0 g)/DR<</Font<</Helv 8 0 R>>>>>>",
             field("amount", script("K", "AFNumber_Keystroke(2,0,0,0,'',true)") +
                                 script("F", "AFNumber_Format(2, 0, 2, 0, '$', true);")),
             field("day", script("K", "AFDate_KeystrokeEx('yyyy-mm-dd')") + script("F", "AFDate_FormatEx('d.m.yy')")),
             field("double", script("C", "AFSimple_Calculate('SUM', ['amount', 'amount'])")),
             field("own", script("F", "event.value = event.value + '!'")),
             "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>",
             "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]/Annots[4 0 R 5 0 R 6 0 R 7 0 R]>>"});
    }

    json fields(const std::string& file) const { return json::parse(folder.run({"list", file, "--json"}).out); }

    const CommandFolder folder;
    const std::string form = folder.write("form.pdf", text());
    const std::string out = folder.path("out.pdf");
};

TEST_F(CalculateTest, AFilledFormComputes)
{
    const CommandResult good =
        folder.run({"fill", form, "amount=-1234.5", "day=2024-01-02", "own=x", "-o", out, "--report"});
    ASSERT_EQ(good.exit, 0) << good.err;
    EXPECT_THAT(good.out, HasSubstr(R"({"name":"double","result":"calculated","value":"-2469"})"));
    EXPECT_EQ(good.err, "formwork: " + form + ": note: 1 script was not run (formwork actions shows it)\n");
    const json list = fields(out);
    EXPECT_EQ(list[0]["shown"], "($1,234.50)");
    EXPECT_EQ(list[1]["shown"], "2.1.24");
    EXPECT_EQ(list[2]["value"], "-2469");
    EXPECT_EQ(list[2]["shown"], nullptr);
    EXPECT_THAT(folder.run({"list", out}).out, HasSubstr("VALUE       SHOWN"));
    EXPECT_THAT(folder.run({"list", form}).out, Not(HasSubstr("SHOWN")));
    EXPECT_THAT(folder.run({"export", out, "--as", "json", "--shown", "amount"}).out, HasSubstr("($1,234.50)"));
    EXPECT_THAT(folder.run({"export", out, "--as", "csv"}).out, HasSubstr("-1234.5,"));
    EXPECT_EQ(folder.run({"export", out, "--as", "url", "--shown"}).exit, 2);
}

TEST_F(CalculateTest, RefusalsAreInTheWordsOfScripts)
{
    const CommandResult refused = folder.run({"fill", form, "amount=much", "day=2024-02-30", "-o", out});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_THAT(refused.err, HasSubstr("field \"amount\" does not take \"much\": "));
    EXPECT_THAT(refused.err, HasSubstr("field \"day\" does not take \"2024-02-30\": Invalid date/time"));
    EXPECT_EQ(read_text_file(out), "");
    EXPECT_EQ(folder.run({"fill", form, "amount=much", "--scripts", "off", "-o", out}).exit, 0);
    EXPECT_EQ(folder.run({"fill", form, "amount=1", "--scripts", "some", "-o", out}).exit, 2);
}

TEST_F(CalculateTest, TheVerbCalculatesWhatIsThere)
{
    ASSERT_EQ(folder.run({"fill", form, "amount=3", "--scripts", "off", "-o", out}).exit, 0);
    EXPECT_EQ(fields(out)[2]["value"], nullptr);
    const std::string calculated = folder.path("calculated.pdf");
    ASSERT_EQ(folder.run({"calculate", out, "-o", calculated}).exit, 0);
    EXPECT_EQ(fields(calculated)[2]["value"], "6");
    const std::string again = folder.path("again.pdf");
    ASSERT_EQ(folder.run({"reset", calculated, "amount", "-o", again}).exit, 0);
    EXPECT_EQ(fields(again)[2]["value"], "0");
}

TEST_F(CalculateTest, EveryRowOfABatchIsCalculatedAnew)
{
    const std::string rows = folder.write("rows.csv", "id,amount\n1,2\n2,\n3,x\n");
    const CommandResult batch = folder.run({"fill", form, "--batch", rows, "-o", folder.path("row{id}.pdf")});
    EXPECT_EQ(batch.exit, 3);
    EXPECT_THAT(batch.err, HasSubstr("field \"amount\" does not take \"x\""));
    EXPECT_EQ(fields(folder.path("row1.pdf"))[2]["value"], "4");
    EXPECT_EQ(fields(folder.path("row2.pdf"))[2]["value"], "0");
}

}  // namespace
