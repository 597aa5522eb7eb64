// The verb fill from its command line to the values that `list --json` then shows.

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/tools/command_run.h"

namespace {
using nlohmann::ordered_json;
namespace fs = std::filesystem;

const std::string KINDS = FORMWORK_SAMPLES_DIR "/kinds.pdf";

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class FillTest : public testing::Test {
protected:
    CommandResult fill(std::vector<std::string> arguments, const std::string& form = KINDS)
    {
        arguments.insert(arguments.begin(), {"fill", form});
        return folder.run(arguments);
    }

    // Every field as `list --json` shows it, by name.
    std::map<std::string, ordered_json> fields(const std::string& file)
    {
        std::map<std::string, ordered_json> found;
        const CommandResult listed = folder.run({"list", "--json", file});
        for (const ordered_json& field : ordered_json::parse(listed.out))
            found.emplace(field["name"], field);
        return found;
    }

    // Each line of standard error is "formwork: FILE: " and a sentence with one of `parts`, in their order.
    void expect_complaints(const CommandResult& result, const std::string& file, const std::vector<std::string>& parts,
                           int exit = 1)
    {
        EXPECT_EQ(result.exit, exit);
        const std::vector<std::string> sentences = lines_of(result.err);
        ASSERT_EQ(sentences.size(), parts.size()) << result.err;
        for (size_t i = 0; i < parts.size(); ++i) {
            EXPECT_EQ(sentences[i].find("formwork: " + file + ": "), 0u) << sentences[i];
            EXPECT_NE(sentences[i].find(parts[i]), std::string::npos) << sentences[i];
        }
    }

    CommandFolder folder;
    std::string out = folder.path("out.pdf");
};

TEST_F(FillTest, EveryKindTakesItsValues)
{
    const struct {
        std::vector<std::string> assignments;
        const char *name, *value, *selected = "[]";
    } cases[] = {
        {{"name=Zoë Ж 名 😀"}, "name", R"("Zoë Ж 名 😀")"},
        {{"Größe=(\\)\r\n"}, "Größe", R"("(\\)\r\n")"},
        {{"agree=true"}, "agree", R"("Yes")"},
        {{"size=large"}, "size", R"("2")"},  // an export value
        {{"size=0"}, "size", R"("0")"},      // a state
        {{"title=Ж"}, "title", R"("Ж")"},    // editable
        {{"toppings=mu", "toppings=Cheese"}, "toppings", R"(["ch","mu"])", "[0,3]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.assignments.front());
        std::vector<std::string> arguments = c.assignments;
        arguments.insert(arguments.begin(), {"-o", out});
        const CommandResult result = fill(arguments);
        EXPECT_EQ(result.out + result.err + std::to_string(result.exit), "0");
        const ordered_json field = fields(out)[c.name];
        EXPECT_EQ(field["value"].dump(), c.value);
        EXPECT_EQ(field["selected"].dump(), c.selected);
        EXPECT_EQ(read_text_file(out).compare(0, fs::file_size(KINDS), read_text_file(KINDS)), 0);
    }
}

TEST_F(FillTest, AllRefusalsAreListedAndNothingIsWritten)
{
    const std::pair<const char*, const char*> cases[] = {
        {"nobody=1", "no field \"nobody\""},
        {"reference=x", "\"reference\" is read-only"},
        {"postcode=123456789", "\"postcode\" takes at most 8 characters, not 9"},
        {"agree=maybe", R"("agree" has no state "maybe": it takes "Off" or "Yes")"},
        {"colour=true", R"("colour" has no state "true": it takes "Off", "red", "green" or "blue")"},
        {"month=", ""},  // allowed: nothing is selected
        {"send=1", "\"send\" is a push button"},
        {"address=1", "\"address\" only groups other fields"},
        {"town=\xff", "the value for \"town\" is not UTF-8"},
        {"name=1", ""},
        {"name=2", "\"name\" is given more than one value"},
    };
    std::vector<std::string> arguments = {"-o", out};
    std::vector<std::string> expected;
    for (const auto& [assignment, refusal] : cases) {
        arguments.push_back(assignment);
        if (*refusal)
            expected.push_back(refusal);
    }
    expect_complaints(fill(arguments), KINDS, expected);
    EXPECT_FALSE(fs::exists(out));
    const std::string copy = folder.write("copy.pdf", read_text_file(KINDS));
    EXPECT_EQ(fill({"--in-place", "name=good", "nobody=1"}, copy).exit, 1);
    EXPECT_EQ(read_text_file(copy), read_text_file(KINDS));
    EXPECT_EQ(fill({"--force", "reference=x", "-o", out}).exit, 0);
    EXPECT_EQ(fields(out)["reference"]["value"], "x");
}

TEST_F(FillTest, DataFilesGiveWhatTheCommandLineWould)
{
    const std::string json = folder.write(
        "d.JSON", R"({"name":"Jö","notes":null,"agree":true,"postcode":-0.50e3,"toppings":["ch","mu"],"month":[]})");
    const std::string csv = folder.write("d.csv", "\xEF\xBB\xBFname,agree,postcode,notes,toppings,toppings\r\n"
                                                  "Jö,true,-0.50e3,,ch,mu\r\n");
    EXPECT_EQ(fill({"name=Jö", "agree=true", "postcode=-0.50e3", "toppings=ch", "toppings=mu", "-o", out}).err, "");
    const std::string from_words = read_text_file(out);
    EXPECT_EQ(fill({"--data", csv, "-o", out}).err, "");
    EXPECT_EQ(read_text_file(out), from_words);
    EXPECT_EQ(fill({"--data", csv, "month=", "-o", out}).err, "");
    const std::string with_month = read_text_file(out);
    EXPECT_EQ(fill({"--data", json, "-o", out}).err, "");
    EXPECT_EQ(read_text_file(out), with_month);
    EXPECT_EQ(fields(out)["month"]["value"], nullptr);
    EXPECT_EQ(fields(out)["postcode"]["value"], "-0.50e3");

    const std::pair<std::string, const char*> refused[] = {
        {folder.write("x.json", "{\"name\":1"), "line 1, column 10: "},
        {folder.write("x.csv", "name\n1\n2\n"), "more than one row"},
        {folder.write("x.fdf", ""), "byte 0: this is no FDF"},
        {folder.write("x.txt", ""), ".json, .csv, .fdf or .xfdf"},
        {folder.path("missing.csv"), "no such file"}};
    for (const auto& [file, fault] : refused)
        expect_complaints(fill({"--data", file, "-o", folder.path("none.pdf")}), file, {fault});
    expect_complaints(fill({"--data", json, "agree=false", "-o", folder.path("none.pdf")}), KINDS,
                      {"more than one value"});
    EXPECT_FALSE(fs::exists(folder.path("none.pdf")));
}

TEST_F(FillTest, TheReportTellsWhatEveryFieldGot)
{
    const std::string report = R"({"name":"agree","result":"coerced","value":"Yes"}
{"name":"size","result":"coerced","value":"1"}
{"name":"toppings","result":"set","value":["ch","mu"]}
)";
    const auto report_with = [this](const std::string& words) {
        return fill(split("agree=true size=medium toppings=ch toppings=mu --report " + words, ' '));
    };
    EXPECT_EQ(report_with("--dry-run -o " + out).out, report);
    EXPECT_EQ(report_with("--dry-run").out, report);
    EXPECT_FALSE(fs::exists(out));
    EXPECT_EQ(report_with("-o " + out).out, report);
    const CommandResult piped = report_with("-o -");
    EXPECT_EQ(piped.err, report);
    EXPECT_EQ(piped.out, read_text_file(out));

    const CommandResult refused = fill({"agree=\x1b\xff", "name=x", "month=x", "--report", "--dry-run"});
    EXPECT_EQ(refused.exit, 1);
    const std::vector<std::string> lines = lines_of(refused.out);
    ASSERT_EQ(lines.size(), 3u) << refused.out;
    EXPECT_EQ(ordered_json::parse(lines[0])["result"], "refused");
    EXPECT_EQ(ordered_json::parse(lines[1])["result"], "set");
    const ordered_json month = ordered_json::parse(lines[2]);
    EXPECT_EQ(month["value"], "x");
    EXPECT_NE(month["why"].get<std::string>().find("it takes \"January\""), std::string::npos);
    EXPECT_EQ((refused.out + refused.err).find('\x1b'), std::string::npos);
}

// Rows that are good, refused for their values, for their output name, and for their form.
constexpr const char* ROWS =
    "id,name,postcode,agree,toppings,toppings\na,Zoë,12345678,true,ch,mu\n../x,Eve,1,true,,\n..,Eve,1,,,\n,Eve,1,,,\n"
    "b,Bob,123456789,maybe,,\nshort\n\"c\x01\",Eve,1,,,\nd,,2,false,,\n";

TEST_F(FillTest, ABatchWritesTheGoodRowsAndTellsOfTheOthers)
{
    const std::string rows = folder.write("rows.csv", ROWS);
    std::map<std::string, std::string> outputs[2];
    for (const std::string jobs : {"1", "4"}) {
        SCOPED_TRACE(jobs + " jobs");
        fs::create_directory(folder.path(jobs));
        const CommandResult result = fill({"--batch", rows, "--jobs", jobs, "-o", folder.path(jobs + "/{id}.pdf")});
        expect_complaints(
            result, rows,
            {"row 2: the value of \"id\" can't be part of a file name: it has a path separator",
             "row 3: the value of \"id\" can't be part of a file name: it has dots",
             "row 4: the value of \"id\" can't be part of a file name: it is empty",
             "row 5: field \"postcode\" takes at most 8 characters, not 9; field \"agree\" has no state \"maybe\"",
             "row 6: it has 1 cell", "row 7: the value of \"id\" can't be part of a file name: it has a control",
             "8 rows: 2 written, 6 refused"},
            3);
        EXPECT_EQ(result.out, "");
        for (const fs::directory_entry& file : fs::directory_iterator(folder.path(jobs)))
            outputs[jobs == "4"][file.path().filename()] = read_text_file(file.path());
    }
    EXPECT_EQ(outputs[0], outputs[1]);
    ASSERT_EQ(outputs[0].size(), 2u);
    // A row leaves nothing behind for the next one: each output is what a fill of its own gives.
    ASSERT_EQ(fill({"name=Zoë", "postcode=12345678", "agree=true", "toppings=ch", "toppings=mu", "-o", out}).exit, 0);
    EXPECT_EQ(outputs[0]["a.pdf"], read_text_file(out));
    ASSERT_EQ(fill({"postcode=2", "agree=false", "-o", out}).exit, 0);
    EXPECT_EQ(outputs[0]["d.pdf"], read_text_file(out));
}

TEST_F(FillTest, ABatchOfJsonLinesChecksEveryRow)
{
    const std::string rows = folder.write("rows.jsonl", R"({"id":1,"sub":"x","agree":true,"toppings":["ch"]}
{"id":2,"sub":"x","nobody":"x"}

{"id":3
{"id":["4"],"sub":"x"}
{"id":"a\u202eb","sub":"x"}
{"id":6,"sub":"."}
{"id":7,"sub":"y"}
{"id":true,"sub":"x"}
)");
    fs::create_directory(folder.path("x"));
    const std::vector<std::string> arguments = {"--batch", rows, "--report", "-o", folder.path("{sub}/{{{id}}.pdf")};
    const CommandResult result = fill(arguments);
    expect_complaints(result, rows,
                      {"row 2: there is no field \"nobody\"", "row 3: column 8: ", "row 4: ", "row 5: ", "row 6: ",
                       "row 7: the output " + folder.path("y"), "8 rows: 2 written, 5 refused, 1 failed"});
    EXPECT_EQ(result.out, R"({"row":1,"name":"agree","result":"set","value":"Yes"}
{"row":1,"name":"toppings","result":"set","value":"ch"}
{"row":2,"name":"nobody","result":"refused","why":"there is no field \"nobody\"","value":"x"}
)");
    EXPECT_EQ(fields(folder.path("x/{1}.pdf"))["toppings"]["value"], "ch");
    EXPECT_EQ(read_text_file(folder.path("x/{true}.pdf")), read_text_file(KINDS));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("x")), {}), 2);
}

TEST_F(FillTest, ABatchIsRefusedBeforeItBegins)
{
    const std::string pattern = folder.path("{id}.pdf");
    const std::string rows = folder.write("rows.csv", "id,name,nix,,name\n1,a,b,d,c\n");
    expect_complaints(fill({"--batch", rows, "-o", pattern}), rows, {"no field \"nix\"", "no field \"\""});
    expect_complaints(
        fill({"--batch", rows, "-o", folder.path("{nix}{name}{ID}.pdf")}), rows,
        {"no field \"id\"", "no field \"\"", "\"name\", which more than one", "\"ID\", which is no column"});
    const std::string broken = folder.write("broken.csv", "id,name\n1,a\n2,\"b\n");
    expect_complaints(fill({"--batch", broken, "-o", pattern}), broken, {"line 3: a quoted cell"});
    for (const auto& [name, fault] :
         {std::pair("empty.csv", "the file has no row of names"), {"none.json", ".jsonl"}, {"none.txt", ".jsonl"}})
        expect_complaints(fill({"--batch", folder.write(name, ""), "-o", pattern}), folder.path(name), {fault});
    const std::string good = folder.write("good.csv", "id,name\n1,a\nform,b\n");
    expect_complaints(fill({"--batch", good, "-o", folder.path("nowhere/{id}.pdf")}), folder.path("nowhere"),
                      {"no such folder"});
    EXPECT_FALSE(fs::exists(folder.path("1.pdf")));
    const CommandResult dry = fill({"--batch", good, "-o", pattern, "--dry-run"});
    EXPECT_EQ(dry.exit, 0) << dry.err;
    EXPECT_FALSE(fs::exists(folder.path("1.pdf")));

    // Without a pattern any column may be there for it.
    const CommandResult names = fill({"--batch", rows, "--dry-run"});
    EXPECT_EQ(names.exit, 3);
    EXPECT_NE(names.err.find("note: there is no field \"nix\""), std::string::npos) << names.err;
    EXPECT_EQ(fill({"--batch", good, "--dry-run"}).exit, 0);

    const std::string form = folder.write("form.pdf", read_text_file(KINDS));
    expect_complaints(fill({"--batch", good, "-o", pattern}, form), good,
                      {"row 2: its output " + form, "2 rows: 1 written, 1 refused"}, 3);
    EXPECT_EQ(read_text_file(form), read_text_file(KINDS));
    EXPECT_EQ(fields(folder.path("1.pdf"))["name"]["value"], "a");

    const std::string to = "-o " + pattern;
    const std::string wrong = "-o " + out + ";-o -;--in-place;" + to + "{;" + to + "{};" + to + " --jobs 0;" + to +
                              " --jobs 2x;" + to + " --rows 3-2;" + to + " --rows 0;" + to + " --resume;" + to +
                              " --name {row};" + to + " --as tar;-o x.zip --resume --manifest m";
    for (const std::string& words : split(wrong, ';')) {
        std::vector<std::string> arguments = split(words, ' ');
        arguments.insert(arguments.begin(), {"--batch", good});
        EXPECT_EQ(fill(arguments).exit, 2) << words;
    }
}
}  // namespace
