// The verbs add, remove, rename, set and actions, from the command line to what `list` and `actions` then show.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/tools/command_run.h"

namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class EditVerbTest : public testing::Test {
protected:
    EditVerbTest()
        : file(folder.write("blank.pdf", pdf_of({"<</Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                                 "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]>>"})))
    {
    }

    CommandResult edit(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin() + 1, file);
        return folder.run(arguments);
    }

    // Names, kinds and flags that the file has now.
    std::string fields()
    {
        std::string text;
        for (const auto& field : nlohmann::json::parse(folder.run({"list", "--json", file}).out))
            text += field["name"].get<std::string>() + " " + field["kind"].get<std::string>() + " " +
                    field["flags"].dump() + ";";
        return text;
    }

    CommandFolder folder;
    std::string file;
};

}  // namespace

TEST_F(EditVerbTest, FormFromNothing)
{
    const std::vector<std::vector<std::string>> edits = {
        {"add", "text", "a.b", "--rect", "1,2,30,10", "--multiline", "--in-place"},
        {"add", "radio", "r", "--rect", "1,20,10,10", "--rect", "20.5,20,10,10", "--state", "add", "--state", "B",
         "--in-place"},
        {"add", "combo", "c", "--rect", "1,40,30,10", "--option", "[x,y]=Shown", "--edit", "--default", "free",
         "--in-place"},
        {"set", "a.b", "--multiline", "off", "--required", "on", "--max-length", "5", "--in-place"},
        {"rename", "a.b", "new", "--top", "--in-place"},
        {"fill", "new=12345", "r=add", "c=Shown", "--in-place"},
    };
    for (const auto& arguments : edits) {
        const CommandResult result = edit(arguments);
        EXPECT_EQ(result.exit, 0) << arguments[0] << result.err;
    }
    EXPECT_EQ(fields(), "r radio 49152;c combo 393216;new text 2;");
    EXPECT_EQ(folder.run({"get", file, "new", "r", "c"}).out, "12345\nadd\n[x,y]\n");
    EXPECT_EQ(edit({"remove", "r", "r", "--in-place"}).exit, 0);
    EXPECT_EQ(fields(), "c combo 393216;new text 2;");
}

TEST_F(EditVerbTest, RefusalsAreNamedAndNothingIsWritten)
{
    ASSERT_EQ(edit({"add", "text", "t", "--rect", "1,2,30,10", "--in-place"}).exit, 0);
    ASSERT_EQ(edit({"add", "text", "group.inner", "--rect", "1,20,30,10", "--in-place"}).exit, 0);
    const struct {
        std::vector<std::string> arguments;
        int exit;
        std::vector<const char*> parts;
    } cases[] = {
        {{"add", "text", "t", "--rect", "290,2,30,10", "--page", "1", "--comb"},
         1,
         {"\"t\" already", "not on page 1", "comb"}},
        {{"add", "check", "n", "--rect", "1,1,9,9", "--page", "4"}, 1, {"no page 4"}},
        {{"add", "slider", "n", "--rect", "1,1,9,9"}, 2, {"slider"}},
        {{"add", "text", "n", "--rect", "1,1,9"}, 2, {"1,1,9"}},
        {{"add", "text", "n", "--rect", "1,1,nan,9"}, 2, {"nan"}},
        {{"remove", "x", "t", "y"}, 1, {"\"x\"", "\"y\""}},
        {{"remove", "gr"}, 1, {"no field \"gr\""}},
        {{"remove", "grup.inner"}, 1, {"did you mean \"group.inner\"?"}},
        {{"rename", "inner", "other"}, 1, {"no field \"inner\": did you mean \"group.inner\"?"}},
        {{"rename", "t", "--under", "grou"}, 1, {"did you mean \"group\"?"}},
        {{"set", "r", "--required", "on"}, 1, {"several have that in their names"}},
        {{"move", "innr", "--page", "1"}, 1, {"did you mean \"group.inner\"?"}},
        {{"tabs", "--by", "t", "innr"}, 1, {"did you mean \"group.inner\"?"}},
        {{"rename", "t", "a.b"}, 1, {"a.b"}},
        {{"rename", "t"}, 2, {"new name"}},
        {{"rename", "t", "--under", ""}, 2, {"--under"}},
        {{"set", "t", "x", "--edit", "on"}, 1, {"\"edit\"", "\"x\""}},
        {{"set", "t", "--edit", "maybe"}, 2, {"maybe"}},
        {{"set", "t"}, 2, {"nothing to set"}},
    };
    for (const auto& c : cases) {
        std::vector<std::string> arguments = c.arguments;
        arguments.insert(arguments.end(), {"-o", folder.path("out.pdf")});
        const CommandResult result = edit(arguments);
        EXPECT_EQ(result.exit, c.exit) << result.err;
        for (const char* part : c.parts)
            EXPECT_THAT(result.err, HasSubstr(part));
        EXPECT_FALSE(fs::exists(folder.path("out.pdf")));
    }
    EXPECT_EQ(edit({"remove", "t"}).exit, 2) << "no output";
    EXPECT_EQ(edit({"remove", "t", "-o", "-"}).out.substr(0, 5), "%PDF-");
}

TEST_F(EditVerbTest, NamesAreFoundByPartsAndNumbersWhereNothingIsLost)
{
    const std::vector<std::vector<std::string>> edits = {
        {"add", "text", "group.first", "--rect", "1,2,30,10"},
        {"add", "text", "group.second", "--rect", "1,20,30,10"},
        {"set", "FIR", "--required", "on"},
        {"set", "3", "--read-only", "on"},
        {"copy", "sec", "group.third", "--rect", "1,40,30,10"},
        {"move", "thi", "--rect", "1,60,30,10"},
        {"tabs", "--by", "thi", "fir"},
        {"rename", "4", "last"},
        {"remove", "3"},
    };
    for (std::vector<std::string> words : edits) {
        const bool by_name = words[0] == "add";
        words.emplace_back("--in-place");
        const CommandResult result = edit(words);
        EXPECT_EQ(result.exit, 0) << words[0] << result.err;
        EXPECT_EQ(result.err.find("is taken for the field \"group.") == std::string::npos, by_name) << result.err;
    }
    EXPECT_EQ(fields(), "group container 0;group.first text 2;group.last text 1;");
}

TEST_F(EditVerbTest, Actions)
{
    file = folder.write("a.pdf", pdf_of({"<</AcroForm<</Fields[2 0 R 3 0 R]/CO[3 0 R]>>>>",
                                         "<</T(one)/FT/Tx/AA<</K<</S/JavaScript/JS<FEFF0061202E000D000A0062>>>>>>>",
                                         "<</T(two)/FT/Btn/A<</S/SubmitForm/F(http://x)/Fields[2 0 R]>>>>"}));
    EXPECT_EQ(edit({"actions"}).out, "one: keystroke: JavaScript\n    a\\u202e\n    b\n"
                                     "two: activate: SubmitForm http://x: one\ncalculation order: two\n");
    const auto json = nlohmann::json::parse(edit({"actions", "--json", "two"}).out);
    EXPECT_EQ(json["actions"].size(), 1u);
    EXPECT_EQ(json["actions"][0]["target"], "http://x");
    EXPECT_EQ(edit({"actions", "three"}).exit, 1);
}

TEST_F(EditVerbTest, MergedFilesHaveAllFields)
{
    ASSERT_EQ(edit({"add", "text", "t", "--rect", "1,2,30,10", "--in-place"}).exit, 0);
    const std::string out = folder.path("out.pdf");
    const struct {
        std::vector<std::string> arguments;
        int exit;
        const char* part;  // of what is said, or of the fields
    } cases[] = {
        {{"merge", file, file, "-o", out}, 1, "field \"t\" stands in both documents; --same-names"},
        {{"merge", file, "-o", out}, 2, "FILE"},
        {{"merge", file, file, "-o", file}, 2, "is an input"},
        {{"merge", file, file, "-o", out, "--same-names", "keep"}, 2, "refuse, rename or join"},
        {{"merge", file, file, file, "-o", out, "--same-names", "rename"}, 0, "\nt\nt_2\nt_3\n"},
        {{"merge", out, file, "-o", folder.path("more.pdf"), "--same-names", "join"}, 0, "\nt\nt_2\nt_3\n"},
    };
    for (const auto& c : cases) {
        const CommandResult result = folder.run(c.arguments);
        EXPECT_EQ(result.exit, c.exit) << result.err;
        std::string said = result.err + "\n";
        if (result.exit == 0) {
            for (const auto& field : nlohmann::json::parse(
                     folder.run({"list", "--json", c.arguments.back() == "join" ? folder.path("more.pdf") : out}).out))
                said += field["name"].get<std::string>() + "\n";
        }
        EXPECT_THAT(said, HasSubstr(c.part));
    }
}
