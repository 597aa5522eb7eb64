// Many forms as one table: which rows and columns, in which order, and what becomes of files that can't be read.
#include <filesystem>

#include "formats/import/csv.h"
#include "tests/tools/command_run.h"

namespace {
namespace fs = std::filesystem;
using Rows = std::vector<std::vector<std::string>>;

Rows rows_of(const std::string& text)
{
    Rows rows;
    CPDFCsvReader reader(text);
    for (std::vector<std::string> cells; reader.next(cells);)
        rows.push_back(cells);
    return rows;
}

class ExtractTest : public testing::Test {
protected:
    CommandResult extract(std::vector<std::string> arguments, const std::string& format = "csv")
    {
        arguments.insert(arguments.begin(), {"extract", "--as", format});
        return folder.run(arguments);
    }

    std::string form(const std::string& name, std::vector<std::string> fields)
    {
        for (std::string& field : fields)
            field = "<<" + field + ">>";
        fs::create_directories(fs::path(folder.path(name)).parent_path());
        return folder.write(name, PdfBuilder().form(fields).table().text);
    }

    CommandFolder folder;
};

TEST_F(ExtractTest, WhatABatchFillsInComesBackAsTheRows)
{
    Rows rows = {{"name", "notes", "agree", "size", "language", "toppings"}};
    for (int i = 0; i < 40; ++i) {
        const std::string n = std::to_string(i);
        rows.push_back({"n" + n, i % 3 ? "a,\"" + n : "x\ry;" + n, i % 2 ? "Yes" : "Off", i % 2 ? "0" : "1", "fr",
                        i % 2 ? "ch|mu" : "mu"});
    }
    std::string text;
    for (const auto& row : rows) {
        for (const std::string& cell : row)
            append_csv_cell(text, cell, &cell == row.data());
        text += "\n";
    }
    fs::create_directory(folder.path("out"));
    ASSERT_EQ(folder
                  .run({"fill", FORMWORK_SAMPLES_DIR "/kinds.pdf", "--batch", folder.write("rows.csv", text), "-o",
                        folder.path("out/{name}.pdf")})
                  .exit,
              0);
    std::string list;
    for (size_t i = 1; i < rows.size(); ++i)
        list += folder.path("out/" + rows[i][0] + ".pdf") + (i % 2 ? "\n" : "\r\n\n");
    std::string names;
    for (const std::string& name : rows[0])
        names += name + "\n";
    const std::vector<std::string> arguments = {"--from-list", folder.write("list.txt", list), "--columns",
                                                folder.write("names.txt", names)};
    const CommandResult alone = extract(arguments);
    Rows back = rows_of(alone.out);
    ASSERT_EQ(back.size(), rows.size()) << alone.err;
    EXPECT_EQ(back[0][0], "file");
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_TRUE(i == 0 || back[i][0].ends_with("/" + rows[i][0] + ".pdf"));
        back[i].erase(back[i].begin());
        EXPECT_EQ(back[i], rows[i]);
    }
    std::vector<std::string> more = arguments;
    more.insert(more.end(), {"--jobs", "5", "-o", folder.path("table.csv")});
    EXPECT_EQ(extract(more).err, "");
    EXPECT_EQ(read_text_file(folder.path("table.csv")), alone.out);
    // The table fills the same forms again.
    fs::rename(folder.path("out"), folder.path("first"));
    fs::create_directory(folder.path("out"));
    ASSERT_EQ(folder
                  .run({"fill", FORMWORK_SAMPLES_DIR "/kinds.pdf", "--batch", folder.path("table.csv"), "-o",
                        folder.path("out/{name}.pdf"), "--ignore-unknown"})
                  .exit,
              0);
    for (const auto& file : fs::directory_iterator(folder.path("first")))
        EXPECT_EQ(read_text_file(file.path()), read_text_file(folder.path("out/" + file.path().filename().string())));
}

TEST_F(ExtractTest, ColumnsAreTheUnionAndFailingFilesHaveNoRow)
{
    const std::string a = form("a.pdf", {"/FT/Tx/T(x)/V(1)", "/FT/Ch/Ff 2097152/T(l)/Opt[(p)(q)]/V[(p)(q)]"});
    const std::string b = form("b.pdf", {"/FT/Tx/T(y;)/V(,)", "/FT/Tx/T(x)", "/FT/Tx/T(file)/V(f)"});
    const std::string none = folder.path("none.pdf");
    const std::string errors = folder.path("errors.csv");
    const CommandResult table = extract({a, none, b, "--errors", errors});
    EXPECT_EQ(table.exit, 3);
    EXPECT_EQ(table.out, "file,x,l,\"y;\",file\r\n" + a + ",1,p|q,,\r\n" + b + ",,,\",\",f\r\n");
    EXPECT_EQ(read_text_file(errors), "file,error\r\n" + none + ",there is no such file\r\n");
    EXPECT_NE(table.err.find(errors + ": names 1 of 3 files"), std::string::npos) << table.err;
    EXPECT_NE(table.err.find("note: a field has this name"), std::string::npos);

    const CommandResult lines = extract({a, none, b}, "jsonl");
    EXPECT_EQ(lines.exit, 3);
    EXPECT_EQ(lines.out, "{\"file\":\"" + a + "\",\"values\":{\"x\":\"1\",\"l\":[\"p\",\"q\"]}}\n{\"file\":\"" + b +
                             "\",\"values\":{\"y;\":\",\",\"file\":\"f\"}}\n");
    EXPECT_EQ(lines.err, "formwork: " + none + ": there is no such file\n");

    EXPECT_EQ(rows_of(extract({a, "--list-separator", " / "}).out)[1][2], "p / q");
    EXPECT_EQ(extract({none, "-o", folder.path("t.csv")}).exit, 1);
    EXPECT_FALSE(fs::exists(folder.path("t.csv")));
    for (const std::string words : {"", "x.pdf --jobs 0", "x.pdf --as xml"})
        EXPECT_EQ(extract(words.empty() ? std::vector<std::string>() : split(words, ' ')).exit, 2) << words;
    for (const auto& [out, errors] : {std::pair(a, folder.path("e")),
                                      {folder.path("t.pdf"), folder.path("e")},
                                      {folder.path("t"), folder.path("t")}})
        EXPECT_EQ(extract({a, "-o", out, "--errors", errors}).exit, 2);
}

TEST_F(ExtractTest, FoldersAreGoneThroughInTheOrderOfNames)
{
    for (const char* name : {"d/b.pdf", "d/a/z.PDF", "d/a/c/1.pdf", "d/c.txt", "e.pdf"})
        form(name, {"/FT/Tx/T(x)"});
    fs::create_directory_symlink(folder.path("d"), folder.path("d/a/loop"));
    const auto names_in = [this](const std::vector<std::string>& arguments) {
        std::string names;
        const std::string head = folder.path("");
        for (const auto& row : rows_of(extract(arguments).out))
            names += (row[0].starts_with(head) ? row[0].substr(head.size()) : row[0]) + " ";
        return names;
    };
    const std::string list = folder.write("list.txt", folder.path("d/c.txt") + "\n" + folder.path("d/a") + "\n");
    EXPECT_EQ(names_in({folder.path("e.pdf"), folder.path("d"), "--recursive", "--from-list", list}),
              "file e.pdf d/a/c/1.pdf d/a/z.PDF d/b.pdf d/c.txt d/a/c/1.pdf d/a/z.PDF ");
    const CommandResult refused = extract({folder.path("e.pdf"), folder.path("d")});
    EXPECT_EQ(refused.exit, 3);
    EXPECT_EQ(refused.err, "formwork: " + folder.path("d") + ": this is a folder: --recursive takes the files in it\n");
}

TEST_F(ExtractTest, OnePasswordOpensAllFiles)
{
    const std::string plain = FORMWORK_SAMPLES_DIR "/kinds.pdf";
    const std::string safe = folder.path("safe.pdf");
    const std::string line = "qpdf --encrypt secret owner 256 -- '" + plain + "' '" + safe + "'";
    if (std::system(line.c_str()) != 0)
        GTEST_SKIP() << "no qpdf";
    EXPECT_EQ(extract({plain, safe}).exit, 3);
    const CommandResult table = extract({plain, safe, "--password", "secret"});
    EXPECT_EQ(table.exit, 0) << table.err;
    EXPECT_EQ(rows_of(table.out).size(), 3u);
}
}  // namespace
