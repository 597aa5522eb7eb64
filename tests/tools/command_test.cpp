#include <pty.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/tools/command_run.h"
#include "tools/terminal_text.h"

namespace {
using nlohmann::ordered_json;
namespace fs = std::filesystem;

// A form with a field of every sort that the command treats in its own way. Object 3 is the form; its fields follow.
std::string form_file()
{
    return pdf_of({
        "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R>>",
        "<</Type/Pages/Count 7/Kids[4 0 R]>>",
        "<</Fields[5 0 R 6 0 R 7 0 R 8 0 R 9 0 R 10 0 R 11 0 R 12 0 R 13 0 R 18 0 R 20 0 R 21 0 R]>>",
        "<</Type/Page/Parent 2 0 R/Annots[5 0 R 16 0 R 19 0 R]>>",
        "<</FT/Tx/T(name)/V(Ann)/DV<FEFF005A00FC>/Subtype/Widget>>",
        "<</FT/Tx/T(locked)/Ff 1/V(old)>>",
        "<</FT/Tx/T(code)/Ff 16777218/MaxLen 3>>",
        "<</FT/Btn/T(agree)/V/Yes/Subtype/Widget/P 4 0 R>>",
        "<</FT/Tx/T(a=b)>>",
        "<</FT/Tx/T([x,y])>>",
        "<</FT/Ch/T(pick)/Ff 2097152/V[(b)(c)]/Opt[(a)[(b)(Bee)]]/I[1]/Kids[22 0 R]>>",
        "<</FT/Btn/Ff 65536/T(evil)/V/#1b#5d0;x#07#0a#c2#9b>>",
        "<</T(group)/Kids[14 0 R 17 0 R]>>",
        "<</FT/Btn/Ff 32768/T(radio)/Parent 13 0 R/V/On/Kids[15 0 R 16 0 R]>>",
        "<</Subtype/Widget/Parent 14 0 R>>",
        "<</Subtype/Widget/Parent 14 0 R>>",
        "<</FT/Sig/T(sign)/Parent 13 0 R/V<</Contents<00>>>>>",
        "<</FT/Tx/T(\xEF\xBB\xBF漢字e\xCC\x81)/V(wide)>>",
        "<</Subtype/Widget/Parent 7 0 R>>",
        "<</FT/Tx/Kids[23 0 R]>>",
        "<</FT/Tx>>",
        "<</Subtype/Widget/Parent 11 0 R>>",
        "<</FT/Btn/Parent 20 0 R>>",
    });
}

class CommandTest : public testing::Test {
protected:
    CommandFolder folder;
    std::string form = folder.write("form.pdf", form_file());
    std::string out = folder.path("out.pdf");
};

TEST_F(CommandTest, WrongUsageExitsTwoAndWritesNothing)
{
    const std::string cases = ";frobnicate F;list;list F --frobnicate;fill F -o " + out + ";fill F name -o " + out +
                              ";fill F name=x;fill F name=x --in-place -o " + out + ";fill F name=x -o " +
                              folder.path("./form.pdf");
    for (const std::string& words : split(cases, ';')) {
        SCOPED_TRACE(words);
        std::vector<std::string> arguments = split(words, ' ');
        std::replace(arguments.begin(), arguments.end(), std::string("F"), form);
        const CommandResult result = folder.run(arguments);
        EXPECT_EQ(result.exit, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.find("formwork: "), 0u) << result.err;
        EXPECT_EQ(result.err.find('\x1f'), std::string::npos) << result.err;
        EXPECT_FALSE(fs::exists(out));
    }
    EXPECT_EQ(read_text_file(form), form_file());
}

TEST_F(CommandTest, EveryVerbHasHelpAndTakesAPasswordWhereItOpensForms)
{
    std::istringstream all(folder.run({"--help"}).out);
    std::string line;
    std::vector<std::string> verbs = {""};
    while (std::getline(all, line) && line != "Verbs:") {
    }
    while (std::getline(all, line) && line.starts_with("  "))
        verbs.push_back(line.substr(2, line.find(' ', 2) - 2));
    EXPECT_GE(verbs.size(), 18u);
    for (const std::string& verb : verbs) {
        SCOPED_TRACE(verb);
        const CommandResult help = verb.empty() ? folder.run({"--help"}) : folder.run({verb, "--help"});
        EXPECT_EQ(help.exit, 0);
        EXPECT_EQ(help.out.find("--password") != std::string::npos, !verb.empty() && verb != "join");
        std::istringstream lines(help.out);
        while (std::getline(lines, line))
            EXPECT_LE(columns_of(line), 80) << line;
    }
    EXPECT_EQ(folder.run({"get", form, "name", "--password", "secret"}).out, "Ann\n");
}

TEST_F(CommandTest, RefusedFilesGetOneSentence)
{
    for (const std::string& file : {folder.path("missing.pdf"), folder.write("text.pdf", "no PDF"), folder.path("")}) {
        SCOPED_TRACE(file);
        const CommandResult result = folder.run({"list", file});
        EXPECT_EQ(result.exit, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err.find("formwork: " + file + ": "), 0u) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    }
    const CommandResult full = folder.run({"fill", form, "name=x", "-o", folder.path("no/such/folder.pdf")});
    EXPECT_EQ(full.exit, 1);
    EXPECT_EQ(full.err.find("formwork: " + form + ": "), 0u) << full.err;
}

TEST_F(CommandTest, ADocumentWithoutFieldsSaysSo)
{
    const std::string file = folder.write("plain.pdf", pdf_of({"<</Type/Catalog>>"}));
    EXPECT_EQ(folder.run({"list", file}).out, file + " has no form fields\n");
    EXPECT_EQ(folder.run({"list", file, "--json"}).out, "[]\n");
}

TEST_F(CommandTest, JsonTellsEveryProperty)
{
    const CommandResult result = folder.run({"list", form, "--json"});
    ASSERT_EQ(result.exit, 0) << result.err;
    const ordered_json list = ordered_json::parse(result.out);
    const std::pair<size_t, const char*> cases[] = {
        {0,
         R"({"name":"name","type":"text","kind":"text","flags":0,"readOnly":false,"required":false,"value":"Ann",)"
         R"("default":"Zü","shown":null,"options":[],"selected":[],"maxLength":null,"object":5,"widgets":[5],"page":1,)"
         R"("label":null,"mappingName":null,"widgetRects":[{"page":1,"rect":null}],"states":[],"exportValues":[],)"
         R"("signed":null,"inheritedFrom":null})"},
        {2,
         R"({"name":"code","type":"text","kind":"text","flags":16777218,"readOnly":false,"required":true,"value":null,)"
         R"("default":null,"shown":null,"options":[],"selected":[],"maxLength":3,"object":7,"widgets":[19],"page":1,)"
         R"("label":null,"mappingName":null,"widgetRects":[{"page":1,"rect":null}],"states":[],"exportValues":[],)"
         R"("signed":null,"inheritedFrom":null})"},
        {6,
         R"({"name":"pick","type":"choice","kind":"list","flags":2097152,"readOnly":false,"required":false,)"
         R"("value":["b","c"],"default":null,"shown":null,"options":[{"value":"a","text":""},{"value":"b","text":"Bee"}],)"
         R"("selected":[1],"maxLength":null,"object":11,"widgets":[22],"page":null,)"
         R"("label":null,"mappingName":null,"widgetRects":[{"page":null,"rect":null}],"states":[],"exportValues":[],)"
         R"("signed":null,"inheritedFrom":null})"},
        {9,
         R"({"name":"group.radio","type":"button","kind":"radio","flags":32768,"readOnly":false,"required":false,)"
         R"("value":"On","default":null,"shown":null,"options":[],"selected":[],"maxLength":null,"object":14,"widgets":[15,16],)"
         R"("page":1,"label":null,"mappingName":null,"widgetRects":[{"page":null,"rect":null},{"page":1,"rect":null}],)"
         R"("states":["Yes","1"],"exportValues":["Yes","1"],"signed":null,"inheritedFrom":null})"},
    };
    ASSERT_EQ(list.size(), 12u);
    for (const auto& [index, expected] : cases)
        EXPECT_EQ(list[index].dump(), expected);
    EXPECT_EQ(list[7]["value"], std::string("\x1b]0;x\x07\n\xc2\x9b"));
    EXPECT_EQ(list[10]["value"], nullptr);  // a signature
    for (const char c : {'\x1b', '\x07', '\x9b'})
        EXPECT_EQ(result.out.find(c), std::string::npos);

    const ordered_json all = ordered_json::parse(folder.run({"list", form, "--json", "--all"}).out);
    ASSERT_EQ(all.size(), 18u);
    EXPECT_EQ(all[7]["name"], "pick#0");
    EXPECT_EQ(all[7]["options"], all[6]["options"]);
    EXPECT_EQ(all[12]["name"], "group.radio#1");
    EXPECT_EQ(all[12]["widgets"], ordered_json::array({16}));
    EXPECT_EQ(all[15]["name"].get<std::string>() + all[16]["name"].get<std::string>() +
                  all[17]["name"].get<std::string>(),
              "#10#10#0#11");
}

TEST_F(CommandTest, GetPrintsOneLineForEachNameOrNothing)
{
    const CommandResult got = folder.run({"get", form, "pick", "code", "group.radio", "name"});
    EXPECT_EQ(got.out, "b, c\n\nOn\nAnn\n");
    const CommandResult refused = folder.run({"get", form, "name", "nobody", "nothing"});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err, "formwork: " + form + ": there is no field \"nobody\"\nformwork: " + form +
                               ": there is no field \"nothing\"\n");
}

TEST_F(CommandTest, FilledValuesReadBack)
{
    const struct {
        const char *assignment, *name, *value;
    } cases[] = {
        {"name=x=y", "name", "x=y\n"},
        {"a=b=c", "a=b", "c\n"},              // '=' in the name
        {"[x,y]=[1,2]", "[x,y]", "[1,2]\n"},  // what the option parser takes for a list
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.assignment);
        const CommandResult filled = folder.run({"fill", form, c.assignment, "-o", out});
        ASSERT_EQ(filled.exit, 0) << filled.err;
        EXPECT_EQ(folder.run({"get", out, "--", c.name}).out, c.value);
    }
}

// What `formwork list` prints on a terminal of this width.
std::vector<std::string> lines_on_terminal(const std::string& file, unsigned short columns)
{
    winsize size = {24, columns, 0, 0};
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        ::execl(FORMWORK_COMMAND, FORMWORK_COMMAND, "list", file.c_str(), nullptr);
        ::_exit(127);
    }
    std::vector<std::string> lines(1);
    char c;
    while (::read(terminal, &c, 1) == 1) {
        if (c == '\n')
            lines.emplace_back();
        else if (c != '\r')
            lines.back() += c;
    }
    ::close(terminal);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    lines.pop_back();
    return lines;
}

TEST_F(CommandTest, TheTableFitsTheTerminalAndIsHarmless)
{
    std::string wide = "<FEFF";
    for (int i = 0; i < 40; ++i)
        wide += "6F22";
    const std::string bytes =
        pdf_of({"<</AcroForm<</Fields[2 0 R 3 0 R 4 0 R]>>>>",
                "<</FT/Tx/T(\xEF\xBB\xBF漢e\xCC\x81)/Ff 3/V<FEFF009B0032004A0007000A>>>",
                "<</FT/Tx/T(form.page.first.second.third)/Ff 4096/V" + wide + ">>>", "<</FT/Ch/T(c)/Ff 393216/V(x)>>"});
    const std::string file = folder.write("wide.pdf", bytes);
    EXPECT_EQ(lines_on_terminal(file, 70), (std::vector<std::string>{
                                               "0 pages, 3 fields: text 2, combo 1",
                                               "3 filled, 0 required and empty",
                                               "",
                                               "NO  KIND   NAME                          VALUE",
                                               "1   text   漢e\xCC\x81                           \\u009b2J\\a\\n",
                                               "2   text   form.page.first.second.third  漢漢漢漢漢漢漢漢漢漢漢漢漢漢…",
                                               "3   combo  c                             x",
                                           }));
    EXPECT_EQ(lines_on_terminal(file, 40)[5], "2   text   form.p….third  漢漢漢漢漢漢…");
    const CommandResult piped = folder.run({"list", file});
    EXPECT_EQ(piped.out.find('\x1b'), std::string::npos);
    EXPECT_NE(piped.out.find("third  漢漢漢漢漢漢漢漢漢漢漢漢漢漢漢漢漢漢漢…\n"), std::string::npos) << piped.out;
    const CommandResult in_full = folder.run({"list", "--long", file});
    EXPECT_EQ(in_full.out.find("…"), std::string::npos);
    EXPECT_NE(in_full.out.find("\n  flags   read-only required\n"), std::string::npos);
}
}  // namespace
