#include "formats/csv.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "formats/form_rows.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

TEST(CsvTest, RowsReadAsTheRulesSay)
{
    const struct {
        const char* label;
        std::string text;
        Rows rows;
        const char* fault;
    } cases[] = {
        {"nothing", "", {}, ""},
        {"a mark and nothing", "\xEF\xBB\xBF", {}, ""},
        {"all line ends, none at the end", "a,b\r\nc\n\nd\re", {{"a", "b"}, {"c"}, {"d"}, {"e"}}, ""},
        {"empty cells", ",\na,\n\"\"\n", {{"", ""}, {"a", ""}, {""}}, ""},
        {"spaces stay", " a , b\n", {{" a ", " b"}}, ""},
        {"quotes, commas and line ends in quotes", "\"a \"\"b\"\",\",\"x\r\ny\nz\"\n", {{"a \"b\",", "x\r\ny\nz"}}, ""},
        {"a mark before a quote", "\xEF\xBB\xBF\"a\",b", {{"a", "b"}}, ""},
        {"zero bytes", std::string("a\0z,c", 5), {{std::string("a\0z", 3), "c"}}, ""},
        {"a quote inside a cell", "a\nb\"c\nd\n", {{"a"}}, "line 2: a quote stands inside"},
        {"text behind a quote", "a\n\"b\r\nc\"d\ne\n", {{"a"}}, "line 3: text follows"},
        {"no closing quote", "a\n\"b\nc\n", {{"a"}}, "line 2: a quoted cell has no end"},
        {"half a quote pair at the end", "\"a\"\"", {}, "line 1: a quoted cell has no end"},
        {"UTF-16", "\xFF\xFE,", {}, "line 1: the text is UTF-16"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        CPDFCsvReader reader(c.text);
        Rows rows;
        for (std::vector<std::string> cells; reader.next(cells);)
            rows.push_back(cells);
        EXPECT_EQ(rows, c.rows);
        EXPECT_EQ(reader.fault().substr(0, std::string(c.fault).size()), c.fault);
        EXPECT_EQ(reader.fault().empty(), *c.fault == 0);
    }
}

TEST(CsvTest, DataIsOneRowAndEmptyCellsAreLeftOut)
{
    const struct {
        const char* text;
        std::vector<std::string> entries;
        const char* fault;
    } cases[] = {
        {"a,b,a\n1,,2\n", {"a=1", "a=2"}, ""},
        {"a\n\"x\n\"\n\n", {"a=x\n"}, ""},
        {"", {}, "no row of names"},
        {"a,b\n", {}, "no row of values"},
        {"a\n1\n2\n", {}, "more than one row"},
        {"a,b\n1\n", {}, "1 cell, not one for each of the 2 columns"},
        {"a\n1,2\n", {}, "2 cells, not one"},
        {"a\n1\n\"", {}, "line 3: "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        CPDFFormData data = {{"left", "over"}};
        const CPDFStatus status = read_csv_data(c.text, data);
        std::vector<std::string> entries;
        for (const CPDFFormEntry& entry : data)
            entries.push_back(entry.name + "=" + std::get<std::string>(entry.value));
        EXPECT_EQ(entries, c.entries);
        EXPECT_EQ(status.ok(), *c.fault == 0);
        EXPECT_NE(status.text.find(c.fault), std::string::npos) << status.text;
    }
}

// Each row as "number name=value ..." or "number: fault".
std::vector<std::string> rows_of(const std::string& suffix, const std::string& text, std::string& failure)
{
    const auto path = std::filesystem::temp_directory_path() / ("formwork-rows" + std::to_string(::getpid()) + suffix);
    std::ofstream(path, std::ios::binary) << text;
    CPDFFormRows rows;
    failure = rows.open(path).text;
    std::filesystem::remove(path);
    std::vector<std::string> lines;
    for (CPDFFormRow row; failure.empty() && rows.next(row);) {
        std::string line = std::to_string(row.number) + (row.fault.empty() ? "" : ": " + row.fault);
        for (const CPDFFormEntry& entry : row.data)
            line += " " + entry.name + "=" + std::get<std::string>(entry.value);
        lines.push_back(line);
    }
    if (failure.empty()) {
        EXPECT_EQ(rows.count(), lines.size());
    }
    return lines;
}

TEST(FormRowsTest, ARowThatCantBeReadDoesNotDisturbTheOthers)
{
    using testing::PrintToString;
    std::string failure;
    EXPECT_EQ(
        rows_of(".CSV", "a,b\n1,\"x\ny\"\n\n2\n3,z\n", failure),
        (std::vector<std::string>{"1 a=1 b=x\ny", "2: it has 1 cell, not one for each of the 2 columns", "3 a=3 b=z"}));
    const auto lines = rows_of(".jsonl", "{\"a\":1}\r\n \t\r\n{\"a\":\"2\"\n{\"a\":\"\\n\"}", failure);
    ASSERT_EQ(lines.size(), 3u) << PrintToString(lines);
    EXPECT_EQ(lines[0], "1 a=1");
    EXPECT_EQ(lines[1].find("2: column 9: "), 0u) << lines[1];
    EXPECT_EQ(lines[2], "3 a=\n");

    EXPECT_EQ(rows_of(".csv", "a\n1\n2\"\n", failure), std::vector<std::string>());
    EXPECT_EQ(failure.find("line 3: "), 0u) << failure;
    rows_of(".csv", "", failure);
    EXPECT_EQ(failure, "the file has no row of names");
    rows_of(".json", "{}", failure);
    EXPECT_NE(failure.find(".jsonl"), std::string::npos) << failure;
}

}  // namespace
