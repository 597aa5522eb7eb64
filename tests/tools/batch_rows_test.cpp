// Rows as spreadsheets and other programs write them, and what options make of them.
#include <filesystem>

#include "tests/tools/command_run.h"

namespace {
namespace fs = std::filesystem;

const std::string KINDS = FORMWORK_SAMPLES_DIR "/kinds.pdf";
using Rows = std::vector<std::vector<std::string>>;

std::string table_of(const Rows& rows, const std::string& divider, const std::string& line_end = "\n",
                     bool quotes_all = false)
{
    std::string text;
    for (const auto& row : rows) {
        for (const std::string& cell : row) {
            const bool quoted = quotes_all || cell.find_first_of(divider + "\n") != std::string::npos;
            text += (&cell == row.data() ? "" : divider) + (quoted ? "\"" + cell + "\"" : cell);
        }
        text += line_end;
    }
    return text;
}

// UTF-16 with its mark, of characters below U+10000.
std::string utf16_of(const std::string& text, bool is_little)
{
    std::string out;
    const auto put = [&](unsigned unit) {
        const char bytes[] = {static_cast<char>(unit >> 8), static_cast<char>(unit)};
        out += bytes[is_little];
        out += bytes[!is_little];
    };
    put(0xFEFF);
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned c = static_cast<unsigned char>(text[i]);
        const int more = c < 0x80 ? 0 : c < 0xE0 ? 1 : 2;
        c &= more == 0 ? 0x7F : more == 1 ? 0x1F : 0x0F;
        for (int k = 0; k < more; ++k)
            c = c << 6 | (static_cast<unsigned char>(text[++i]) & 0x3F);
        put(c);
    }
    return out;
}

class BatchRowsTest : public testing::Test {
protected:
    // Runs the batch into an empty folder "out". Afterwards the outputs are there by their names.
    CommandResult batch(const std::string& rows, std::vector<std::string> more = {})
    {
        fs::remove_all(folder.path("out"));
        fs::create_directory(folder.path("out"));
        more.insert(more.begin(), {"fill", KINDS, "--batch", rows, "-o", folder.path("out/{id}.pdf")});
        CommandResult result = folder.run(more);
        outputs.clear();
        for (const auto& file : fs::directory_iterator(folder.path("out")))
            outputs[file.path().filename()] = read_text_file(file.path());
        return result;
    }

    std::string value(const std::string& output, const std::string& field)
    {
        return folder.run({"get", folder.path("out/" + output), field}).out;
    }

    CommandFolder folder;
    std::map<std::string, std::string> outputs;
};

TEST_F(BatchRowsTest, TheSameRowsInEveryDialectGiveTheSameOutputs)
{
    const auto rows_with = [](const std::string& yes, const std::string& no) {
        return Rows{{"id", "name", "agree", "postcode", "toppings"},
                    {"a", "Zoë, Ж; 名", yes, "1,5", "ch|mu"},
                    {"b", "one\ntwo", no, "", "mu"},
                    {"c", "", yes, "2;3", ""}};
    };
    const Rows rows = rows_with("true", "false");
    const std::string lists = "{\"id\":\"a\",\"name\":\"Zoë, Ж; 名\",\"agree\":true,\"postcode\":\"1,5\","
                              "\"toppings\":[\"ch\",\"mu\"]}\n"
                              "{\"id\":\"b\",\"name\":\"one\\ntwo\",\"agree\":false,\"toppings\":\"mu\"}\n"
                              "{\"id\":\"c\",\"name\":null,\"agree\":true,\"postcode\":\"2;3\"}\n";
    const std::string mark = "\xEF\xBB\xBF";
    const struct {
        const char* label;
        std::string name, text;
        std::vector<std::string> more;
    } dialects[] = {
        {"commas", "r.csv", table_of(rows, ","), {}},
        {"semicolons, mark, CRLF, words", "r.csv", mark + table_of(rows_with("TRUE", "FALSE"), ";", "\r\n"), {}},
        {"tabs", "r.csv", table_of(rows_with("yes", "no"), "\t"), {}},
        {"all quoted", "r.csv", table_of(rows_with("1", "0"), ";", "\r\n", true), {}},
        {"a line that tells", "r.csv", "sep=;\r\n" + table_of(rows, ";", "\r\n"), {}},
        {"UTF-16, little", "r.csv", utf16_of(table_of(rows, "\t", "\r\n"), true), {}},
        {"UTF-16, big", "r.csv", utf16_of(table_of(rows, ";"), false), {}},
        {"empty cells and rows behind", "r.tsv", table_of(rows, "\t", "\t\t\r\n") + "\t\t\t\t\r\n", {}},
        {"another divider", "r.csv", table_of(rows, ":"), {"--delimiter", ":", "--list-separator", "|"}},
        {"a word", "r.csv", table_of(rows, "\t"), {"--delimiter", "tab"}},
        {"JSON lines", "r.jsonl", lists, {}},
    };
    std::map<std::string, std::string> first;
    for (const auto& dialect : dialects) {
        SCOPED_TRACE(dialect.label);
        const std::string file = folder.write(dialect.name, dialect.text);
        const CommandResult result = batch(file, dialect.more);
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.err, "formwork: " + file + ": 3 rows: 3 written\n");
        ASSERT_EQ(outputs.size(), 3u);
        if (first.empty())
            first = outputs;
        EXPECT_TRUE(outputs == first);
    }
    EXPECT_EQ(value("a.pdf", "name"), "Zoë, Ж; 名\n");
    // The same in a file with one row.
    const std::string one = folder.write("one.csv", table_of({{"name", "agree"}, {"Zoë, Ж; 名", "TRUE"}}, ";"));
    ASSERT_EQ(folder.run({"fill", KINDS, "--data", one, "-o", folder.path("out/one.pdf")}).err, "");
    EXPECT_EQ(value("one.pdf", "name") + value("one.pdf", "agree"), "Zoë, Ж; 名\nYes\n");
}

TEST_F(BatchRowsTest, AMapBringsColumnsToFields)
{
    const std::string map = folder.write("map.json", R"({"Born": {"field": "postcode", "date": "d.m.yyyy>yy-mm-dd"},
        "Name": ["name", {"field": "town", "upper": true}], "Sum": {"field": "notes", "number": "1.234,56>1,234.56"},
        "Junk": null})");
    const std::string rows = folder.write("rows.csv", "id;Born;Name;Sum;Junk\na;3.4.1999;Zoë;-1234567,50;x\n"
                                                      "b;31.2.1999;;1;\nc;;;1234.567,8;\nd;;;1.234,5;\n");
    const CommandResult result = batch(rows, {"--map", map});
    EXPECT_EQ(result.exit, 3);
    EXPECT_EQ(outputs.size(), 2u) << result.err;
    EXPECT_EQ(value("a.pdf", "postcode") + value("a.pdf", "name") + value("a.pdf", "town") + value("a.pdf", "notes"),
              "99-04-03\nZoë\nZOË\n-1,234,567.50\n");
    EXPECT_EQ(value("d.pdf", "notes"), "1,234.5\n");
    EXPECT_NE(result.err.find("row 2: the column \"Born\": \"31.2.1999\" is no date d.m.yyyy"), std::string::npos);
    EXPECT_NE(result.err.find("row 3: the column \"Sum\": \"1234.567,8\" is no number such as 1.234,56"),
              std::string::npos);
    const std::pair<const char*, const char*> wrong[] = {
        {R"({"Name": "nobody"})", "the column \"Name\": there is no field \"nobody\""},
        {R"({"Other": "name", "Name": "name"})", "the rows have no column \"Other\""},
        {R"({"Name": 1})", "the column \"Name\": it is no name of a field"},
        {R"({"Name": {"field": "name", "date": "dd.mm>yyyy"}})", "\"dd.mm>yyyy\" are not two formats"},
        {R"({"Name": {"field": "name", "lower": ""}})", "there is no conversion \"lower\""},
        {"{\n\"Name\" 1}", "line 2, column 8"},
    };
    for (const auto& [text, fault] : wrong) {
        const CommandResult refused = batch(rows, {"--map", folder.write("wrong.json", text)});
        EXPECT_EQ(refused.exit, 1);
        EXPECT_NE(refused.err.find(fault), std::string::npos) << refused.err;
        EXPECT_TRUE(outputs.empty());
    }
}

TEST_F(BatchRowsTest, ConstantsStandBesideTheRowsAndEmptyCellsMayClear)
{
    const std::string filled = folder.path("filled.pdf");
    ASSERT_EQ(folder.run({"fill", KINDS, "name=old", "agree=true", "toppings=ch", "language=fr", "-o", filled}).err,
              "");
    const std::string rows = folder.write("rows.csv", "id,name,agree,toppings,unused,language\n"
                                                      "a,,,,1,\nb,new,no,mu|ch,2,de\n");
    const std::string data = folder.write("data.json", R"({"town": "Bern", "nobody": "x"})");
    const CommandResult refused = batch(rows, {"name=all", "--data", data});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_NE(refused.err.find("no field \"unused\""), std::string::npos);
    EXPECT_NE(refused.err.find("--ignore-unknown"), std::string::npos);
    const std::string all = "formwork: " + rows + ": 2 rows: 2 written\n";
    EXPECT_EQ(batch(rows, {"name=all", "--data", data, "--ignore-unknown"}).err, all);
    EXPECT_EQ(value("a.pdf", "name") + value("a.pdf", "town") + value("b.pdf", "name"), "all\nBern\nnew\n");

    const std::string table = folder.write("data.csv", "Place,town in words\nBern,\n");
    const std::string map = folder.write("map.json", R"({"Place": {"field": "town", "upper": true}})");
    EXPECT_EQ(batch(rows, {"--data", table, "--map", map, "--ignore-unknown"}).err, all);
    EXPECT_EQ(value("a.pdf", "town"), "BERN\n");

    const auto fill_old = [&](const char* empty) {
        const CommandResult result = folder.run(
            {"fill", filled, "--batch", rows, "--ignore-unknown", "--empty", empty, "-o", folder.path("out/{id}.pdf")});
        EXPECT_EQ(result.err, all);
        return value("a.pdf", "name") + value("a.pdf", "agree") + value("a.pdf", "toppings") +
               value("a.pdf", "language");
    };
    EXPECT_EQ(fill_old("keep"), "old\nYes\nch\nfr\n");
    EXPECT_EQ(fill_old("clear"), "\nOff\n\n\n");
}

TEST_F(BatchRowsTest, RowsComeThroughAPipe)
{
    for (const std::string text : {"\n {\"id\":\"a\",\"name\":\"x\"}\n", "id;name\na;x\n"}) {
        fs::remove_all(folder.path("out"));
        fs::create_directory(folder.path("out"));
        const std::string line = "cat '" + folder.write("rows", text) + "' | '" FORMWORK_COMMAND "' fill '" + KINDS +
                                 "' --batch - -o '" + folder.path("out/{id}.pdf") + "' 2>/dev/null";
        EXPECT_EQ(std::system(line.c_str()), 0);
        EXPECT_EQ(value("a.pdf", "name"), "x\n") << text;
    }
}

TEST_F(BatchRowsTest, WhatIsNoTableIsRefusedInASentence)
{
    const struct {
        const char* name;
        std::string text, fault;
    } cases[] = {
        {"rows.xlsx", "PK", "save the sheet as CSV UTF-8"},
        {"rows.csv", "id,name\na,x\nb,Z\xF6\n", "line 3: the text is not UTF-8"},
        {"rows.csv", std::string("\xFF\xFEi\0d\0\0\xD8", 8), "byte 6: the UTF-16 text breaks"},
    };
    for (const auto& c : cases) {
        const std::string file = folder.write(c.name, c.text);
        for (const char* option : {"--batch", "--data"}) {
            const CommandResult result = folder.run({"fill", KINDS, option, file, "-o", folder.path("{id}.pdf")});
            EXPECT_EQ(result.exit, 1);
            EXPECT_NE(result.err.find(c.fault), std::string::npos) << result.err;
        }
    }
    const std::string rows = folder.write("rows.csv", "id,name\na,x\n");
    for (const auto& [option, word] : {std::pair("--delimiter", "ab"), {"--delimiter", "\""}, {"--empty", "no"}})
        EXPECT_EQ(batch(rows, {option, word}).exit, 2) << word;
}
}  // namespace
