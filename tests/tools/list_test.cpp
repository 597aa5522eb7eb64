#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/support/pdf_builder.h"
#include "tests/tools/command_run.h"

namespace {
using nlohmann::json;
using testing::HasSubstr;

class ListTest : public testing::Test {
protected:
    std::string write(const std::string& name, const std::vector<std::string>& fields)
    {
        return folder.write(name, PdfBuilder().form(fields).table().text);
    }
    std::string list(const std::string& file, const std::string& how) { return folder.run({"list", file, how}).out; }

    CommandFolder folder;
};

const std::vector<std::string> FIELDS = {
    "<</T(group)/MaxLen 4/Ff 3/Kids[11 0 R]>>",
    "<</FT/Tx/T(code)/Parent 10 0 R/TU(The code)/TM(map)/Subtype/Widget/Rect[10.5 30 0 20]"
    "/AA<</F<</S/JavaScript/JS(AFNumber_Format\\(2,0,0,0,\"EUR \",true\\);)>>>>>>",
    "<</FT/Btn/T(box)/V/b/Opt[(x)(y)]/Kids[13 0 R 14 0 R]>>",
    "<</Subtype/Widget/Parent 12 0 R/AP<</N<</a 1 0 R>>>>>>",
    "<</Subtype/Widget/Parent 12 0 R/AP<</N<</b 1 0 R>>>>>>",
    "<</FT/Ch/Ff 393216/T(pick)/Opt[[(1)(One)](2)]/V(1)/Kids[16 0 R]>>",
    "<</T(kid)/Parent 15 0 R>>",
    "<</FT/Tx/Ff 33554432/T(rich)/RV(<body><p>A &amp;\n <b>B</b></p><p>C<br/>D</p></body>)>>",
    "<</FT/Tx/T(twin)/AA<</K<</S/JavaScript/JS(AFDate_KeystrokeEx\\(\"mm/dd/yyyy\"\\);)>>>>>>",
    "<</FT/Tx/T(twin)/V(x)>>",
    "<</FT/Sig/T(sign)>>",
};

}  // namespace

TEST_F(ListTest, JsonTellsWhatFieldsTakeAndWhereTheyStand)
{
    const std::string file = write("form.pdf", FIELDS);
    const json fields = json::parse(list(file, "--json"));
    std::map<std::string, json> by_name;
    for (const json& field : fields)
        by_name.emplace(field["name"], field);
    const struct {
        const char *name, *key, *value;
    } cases[] = {
        {"group.code", "readOnly", "true"},
        {"group.code", "required", "true"},
        {"group.code", "maxLength", "4"},
        {"group.code", "label", "\"The code\""},
        {"group.code", "mappingName", "\"map\""},
        {"group.code", "widgetRects", R"([{"page":null,"rect":[0,20,10.5,30]}])"},
        {"box", "states", R"(["a","b"])"},
        {"box", "exportValues", R"(["x","y"])"},
        {"pick", "inheritedFrom", "null"},
        {"pick.kid", "inheritedFrom", "\"pick\""},
        {"pick.kid", "value", "\"1\""},
        {"rich", "value", R"("A & B\nC\nD")"},
        {"sign", "signed", "false"},
        {"box", "signed", "null"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(by_name[c.name][c.key], json::parse(c.value)) << c.name << ' ' << c.key << by_name[c.name];
}

TEST_F(ListTest, LongTellsInWordsAndTheSummaryCounts)
{
    const std::string file = write("form.pdf", FIELDS);
    const std::string in_full = list(file, "--long");
    for (const char* line :
         {"\n  label   The code\n", "takes   text, at most 4 characters, number, 2 decimals, in EUR\n",
          "takes   \"Off\", \"a\" (x), \"b\" (y)\n", "takes   \"1\" (One), \"2\", or any text\n",
          "takes   text, date mm/dd/yyyy\n", "  flags   read-only required\n"})
        EXPECT_THAT(in_full, HasSubstr(line));
    const json summary = json::parse(folder.run({"list", file, "--summary", "--json"}).out);
    EXPECT_EQ(summary["fields"], json::parse(R"({"container":1,"check":1,"text":4,"combo":2,"signature":1})"));
    EXPECT_EQ(summary["filled"], 4);
    EXPECT_EQ(summary["requiredEmpty"], 1);
    EXPECT_EQ(summary["sameNames"], 1);
    EXPECT_EQ(summary["fieldsWithScripts"], 2);
    EXPECT_EQ(summary["xfa"], nullptr);
    EXPECT_THAT(list(file, "--summary"), HasSubstr("1 field with the name of another one\n"));
}

TEST_F(ListTest, FieldsAreFoundByPartsAndNumbers)
{
    const std::string file = write("form.pdf", FIELDS);
    const std::string refused = "formwork: " + file + ": there is no field ";
    const struct {
        const char *word, *out;
        std::string err;
    } cases[] = {
        {"3", "b\n", ""},
        {"ICH", "A & B\nC\nD\n", ""},
        {"pic", "1\n", ""},
        {"12", "", refused + "\"12\"\n"},
        {"grop", "", refused + "\"grop\": did you mean \"group\"?\n"},
        {"i", "",
         refused +
             "\"i\", and several have that in their names: \"pick\", \"pick.kid\", \"rich\", \"twin\", \"twin\" and 1 more\n"},
        {"twin", "\n",
         "formwork: " + file +
             ": note: 2 fields have the name \"twin\": the first one is taken, and numbers in the list tell them apart\n"},
    };
    for (const auto& c : cases) {
        const CommandResult got = folder.run({"get", file, c.word});
        EXPECT_EQ(got.out, c.out) << c.word;
        EXPECT_EQ(got.err, c.err) << c.word;
    }
    const std::string out = folder.path("out.pdf");
    EXPECT_EQ(folder.run({"fill", file, "box=a", "ric=E", "-o", out}).err,
              "formwork: " + file + ": note: \"ric\" is taken for the field \"rich\"\n");
    EXPECT_EQ(folder.run({"get", out, "box", "rich"}).out, "a\nE\n");
    EXPECT_THAT(folder.run({"fill", file, "bux=a", "-o", out}).err, HasSubstr("did you mean \"box\"?"));
    const std::string note = "2 fields have the name \"twin\": the first one is taken";
    const std::string rows = folder.write("rows.jsonl", "{\"twin\":\"1\"}\n{\"twin\":\"2\"}\n");
    EXPECT_THAT(folder.run({"fill", file, "twin=01/02/2000", "-o", out}).err, HasSubstr(note));
    EXPECT_EQ(folder.run({"fill", out, "8=second", "--in-place"}).err,
              "formwork: " + out + ": note: \"8\" is taken for the field \"twin\"\n");
    EXPECT_EQ(folder.run({"get", out, "7", "8"}).out, "01/02/2000\nsecond\n");
    const std::string told = folder.run({"fill", file, "--batch", rows, "--dry-run"}).err;
    EXPECT_THAT(told, HasSubstr(note));
    EXPECT_EQ(told.find(note), told.rfind(note)) << "told once";
}

TEST_F(ListTest, CompareTellsWhatDiffers)
{
    const std::string first =
        write("a.pdf", {"<</FT/Tx/T(a)/V(1)>>", "<</FT/Tx/T(b)/V()>>", "<</FT/Btn/T(c)/V/Off>>", "<</FT/Tx/T(d)>>"});
    const std::string second =
        write("b.pdf", {"<</FT/Tx/T(a)/V(2)>>", "<</FT/Tx/T(b)>>", "<</FT/Btn/T(c)>>", "<</FT/Tx/T(e)/V(x)>>"});
    const CommandResult same = folder.run({"compare", first, first});
    EXPECT_EQ(same.exit, 0);
    EXPECT_EQ(same.out, "");
    const CommandResult differ = folder.run({"compare", first, second});
    EXPECT_EQ(differ.exit, 1);
    EXPECT_EQ(differ.out, "differs         a     \"1\" -> \"2\"\n"
                          "only in first   d     \"\"\n"
                          "only in second  e     \"x\"\n");
    EXPECT_EQ(json::parse(folder.run({"compare", first, second, "--json"}).out),
              json::parse(R"([{"name":"a","in":"both","first":"1","second":"2"},
                              {"name":"d","in":"first","first":null,"second":null},
                              {"name":"e","in":"second","first":null,"second":"x"}])"));
    EXPECT_EQ(folder.run({"compare", first, folder.path("none.pdf")}).exit, 2);
}
