#include "formats/import/csv.h"

#include <gtest/gtest.h>

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
        {"a mark and nothing", "\xEF\xBB\xBF", {}, ""},
        {"all line ends, none at the end", "a,b\r\nc\n\nd\re", {{"a", "b"}, {"c"}, {"d"}, {"e"}}, ""},
        {"empty cells", ",\na,\n\"\"\n", {{"", ""}, {"a", ""}, {""}}, ""},
        {"quotes, commas and line ends in quotes", "\"a \"\"b\"\",\",\"x\r\ny\nz\"\n", {{"a \"b\",", "x\r\ny\nz"}}, ""},
        {"a mark before a quote", "\xEF\xBB\xBF\"a\",b", {{"a", "b"}}, ""},
        {"a quote inside a cell", "a\nb\"c\nd\n", {{"a"}}, "line 2: a quote stands inside"},
        {"text behind a quote", "a\n\"b\r\nc\"d\ne\n", {{"a"}}, "line 3: text follows"},
        {"no closing quote", "a\n\"b\nc\n", {{"a"}}, "line 2: a quoted cell has no end"},
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
        for (const PDF_FORM_ENTRY& entry : data)
            entries.push_back(entry.name + "=" + std::get<std::string>(entry.value));
        EXPECT_EQ(entries, c.entries);
        EXPECT_EQ(status.ok(), *c.fault == 0);
        EXPECT_NE(status.text.find(c.fault), std::string::npos) << status.text;
    }
}

}  // namespace
