// What becomes of the rows of a batch: names, manifests and what goes on by them, updates, archives.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/support/memory_document.h"
#include "tests/tools/command_run.h"
#include "tools/batch/sha256.h"

namespace {
using nlohmann::json;
using testing::HasSubstr;
namespace fs = std::filesystem;

const std::string KINDS = FORMWORK_SAMPLES_DIR "/kinds.pdf";
constexpr const char* ROWS = "id,name,postcode\na,Ada,1\nb,東京 Bob,2\nc,Cem,123456789\nd,日本,4\ne,Eve,5\n";

class BatchTest : public testing::Test {
protected:
    BatchTest() { fs::create_directory(folder.path("out")); }

    CommandResult fill(const std::vector<std::string>& options, const std::string& form = KINDS)
    {
        std::vector<std::string> arguments = {"fill", form, "--batch", rows};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return folder.run(arguments);
    }

    // The files in a folder with their bytes.
    std::map<std::string, std::string> files(const std::string& name = "out") const
    {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path(name)))
            found[entry.path().filename()] = read_text_file(entry.path());
        return found;
    }

    std::map<std::string, std::string> files_of(const std::vector<std::string>& options,
                                                const std::string& form = KINDS)
    {
        fs::remove_all(folder.path("out"));
        fs::create_directory(folder.path("out"));
        EXPECT_EQ(fill(options, form).exit, 3);
        return files();
    }

    std::vector<json> lines() const
    {
        std::vector<json> found;
        for (const std::string& line : split(read_text_file(manifest), '\n')) {
            if (!line.empty())
                found.push_back(json::parse(line));
        }
        return found;
    }

    CommandFolder folder;
    std::string rows = folder.write("rows.csv", ROWS);
    std::string manifest = folder.path("m.jsonl");
    std::string ids = folder.path("out/{id}.pdf");
};

TEST_F(BatchTest, NamesHaveNumbersOfRowsAndDifferBeforeAnythingIsWritten)
{
    const CommandResult part = fill({"--rows", "2-4", "-o", folder.path("out/{row}-{row:03}-{id}.pdf")});
    EXPECT_EQ(part.exit, 3);
    EXPECT_THAT(part.err, HasSubstr("3 rows: 2 written, 1 refused\n"));
    EXPECT_EQ(files().size(), 2u);
    EXPECT_TRUE(files().contains("2-002-b.pdf") && files().contains("4-004-d.pdf"));

    fs::remove_all(folder.path("out"));
    fs::create_directory(folder.path("out"));
    rows = folder.write("same.csv", "id,name\na,1\nb,2\na,3\nc,4\nb,5\na,6\n");
    const CommandResult same = fill({"-o", ids});
    EXPECT_EQ(same.exit, 1);
    EXPECT_THAT(same.err, HasSubstr("row 3: its output " + folder.path("out/a.pdf") + " is that of row 1, too"));
    EXPECT_THAT(same.err, HasSubstr("row 5: its output " + folder.path("out/b.pdf") + " is that of row 2, too"));
    EXPECT_EQ(std::count(same.err.begin(), same.err.end(), '\n'), 3);
    EXPECT_TRUE(files().empty());
    // A part is refused for what another one would overwrite.
    EXPECT_EQ(fill({"-o", ids, "--rows", "1-2"}).exit, 1);
}

TEST_F(BatchTest, ARowGivesTheSameBytesWhicheverJobDoesIt)
{
    std::string many = "id,name,postcode,agree,toppings\nbad,x,123456789,,\n";
    for (int i = 0; i < 24; ++i)
        many += std::to_string(i) + (i % 3 ? ",Ann 東" : ",京都 ") + std::to_string(i) + "," + std::to_string(i) +
                (i % 2 ? ",true,ch\n" : ",,\n");
    rows = folder.write("many.csv", many);
    const std::string secret = folder.path("secret.pdf");
    const bool has_qpdf =
        std::system(("qpdf --encrypt u o 256 -- " + KINDS + " " + secret + " 2>/dev/null").c_str()) == 0;
    std::vector<std::vector<std::string>> kinds = {{}, {"--flatten"}, {"--scripts", "off", "--no-appearance"}};
    if (has_qpdf)
        kinds.push_back({"--password", "u"});
    for (std::vector<std::string> options : kinds) {
        const std::string form = options.empty() || options[0] != "--password" ? KINDS : secret;
        SCOPED_TRACE(options.empty() ? "" : options[0]);
        options.insert(options.end(), {"-o", ids, "--jobs"});
        options.push_back("1");
        const auto one = files_of(options, form);
        options.back() = "4";
        EXPECT_EQ(one, files_of(options, form));
        options.insert(options.end(), {"--rows", "1-12"});
        for (const auto& [name, bytes] : files_of(options, form))
            EXPECT_EQ(bytes, one.at(name));
        EXPECT_EQ(one.size(), 24u);
    }
}

TEST_F(BatchTest, TheManifestTellsWhatIsToBeDoneAgain)
{
    const std::vector<std::string> start = {"-o", ids, "--manifest", manifest};
    std::vector<std::string> go_on = start;
    go_on.emplace_back("--resume");
    EXPECT_EQ(fill(start).exit, 3);
    const std::vector<json> first = lines();
    ASSERT_EQ(first.size(), 5u);
    for (const json& line : first) {
        const bool is_good = line["row"] != 3;
        EXPECT_EQ(line["result"], is_good ? "written" : "refused");
        const std::string output = line["output"];
        EXPECT_EQ(is_good, fs::exists(output)) << output;
        const json refusals = is_good ? json::array() : json{"field \"postcode\" takes at most 8 characters, not 9"};
        EXPECT_EQ(line["refusals"], refusals);
        EXPECT_EQ(line.value("sha256", ""), is_good ? Sha256().add(read_text_file(output)).hex() : "");
    }
    // It is not mixed up with another run, and one that ended has nothing to do.
    EXPECT_EQ(fill(start).exit, 1);
    const std::string before = read_text_file(manifest);
    const CommandResult again = fill(go_on);
    EXPECT_EQ(again.exit, 3);
    EXPECT_THAT(again.err, HasSubstr("row 3: field \"postcode\""));
    EXPECT_THAT(again.err, HasSubstr("5 rows: 0 written, 1 refused, 4 skipped"));
    EXPECT_EQ(read_text_file(manifest), before);

    // A torn line, a lost output, a corrected row and a changed one.
    const auto outputs = files();
    folder.write("m.jsonl", before.substr(0, before.rfind("\"row\":5") + 20));
    fs::remove(folder.path("out/b.pdf"));
    folder.write("rows.csv", std::string(ROWS).replace(std::string(ROWS).find("123456789"), 9, "3"));
    EXPECT_THAT(fill(go_on).err, HasSubstr("5 rows: 3 written, 2 skipped"));
    const std::vector<json> after = lines();
    ASSERT_EQ(after.size(), 7u);
    EXPECT_EQ(after[4]["row"], 2);
    EXPECT_EQ(after[5]["row"], 3);
    EXPECT_EQ(after[6]["row"], 5);
    EXPECT_EQ(files().size(), 5u);
    for (const auto& [name, bytes] : outputs)
        EXPECT_EQ(files().at(name), bytes);
    go_on.emplace_back("--flatten");
    EXPECT_THAT(fill(go_on).err, HasSubstr("5 rows: 5 written"));
}

TEST_F(BatchTest, OutputsThatAreThereMayStay)
{
    folder.write("out/a.pdf", "kept");
    folder.write("out/b.pdf", "old");
    folder.write("out/b.pdf.formwork-new", "whole");
    folder.write("out/b.pdf.formwork-part", "par");
    const CommandResult result = fill({"-o", ids, "--skip-existing", "--manifest", manifest});
    EXPECT_EQ(result.exit, 3);
    EXPECT_THAT(result.err, HasSubstr("5 rows: 2 written, 1 refused, 2 skipped"));
    EXPECT_EQ(files()["a.pdf"], "kept");
    EXPECT_EQ(files()["b.pdf"], "whole");
    EXPECT_EQ(files().size(), 4u);
    EXPECT_EQ(lines()[0]["result"], "skipped");
}

TEST_F(BatchTest, UpdatesJoinedWithTheirTemplateAreTheFilledFiles)
{
    const auto whole = files_of({"-o", ids});
    const auto updates = files_of({"-o", folder.path("out/{id}.update"), "--updates-only", "--manifest", manifest});
    ASSERT_EQ(updates.size(), 4u);
    EXPECT_EQ(lines()[0]["sha256"], Sha256().add(updates.at("a.update")).hex());
    const std::string out = folder.path("joined.pdf");
    for (const auto& [name, bytes] : whole) {
        const std::string update = folder.path("out/" + name.substr(0, 1) + ".update");
        EXPECT_LT(fs::file_size(update) + fs::file_size(KINDS), bytes.size() + 200);
        ASSERT_EQ(folder.run({"join", KINDS, update, "-o", out}).exit, 0);
        EXPECT_EQ(read_text_file(out), bytes);
    }
    const std::string update = folder.path("out/a.update");
    EXPECT_EQ(folder.run({"join", KINDS, update, "-o", "-"}).out, whole.at("a.pdf"));

    std::string other = read_text_file(KINDS);
    other[other.size() / 2] ^= 1;
    const std::tuple<std::string, std::string, const char*> wrong[] = {
        {folder.write("other.pdf", other), update, "another template than"},
        {folder.write("long.pdf", other + "\n"), update, "not of"},
        {KINDS, KINDS, "it is no update"},
        {KINDS, folder.write("cut.update", read_text_file(update).substr(0, 60)), "it is no update"},
        {KINDS, folder.path("none"), "none"},
    };
    for (const auto& [form, file, why] : wrong) {
        const CommandResult result = folder.run({"join", form, file, "-o", folder.path("none.pdf")});
        EXPECT_EQ(result.exit, 1);
        EXPECT_THAT(result.err, HasSubstr(why));
        EXPECT_FALSE(fs::exists(folder.path("none.pdf")));
    }
    // What was repaired begins with other bytes.
    const std::string broken = folder.write("broken.pdf", other.substr(0, other.rfind("startxref")));
    const CommandResult result = fill({"-o", ids, "--updates-only"}, broken);
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.err, HasSubstr("the file was repaired"));
}

// What a batch writes beside its outputs takes the place of nothing else.
TEST_F(BatchTest, OtherFilesAreNoManifestAndNoArchive)
{
    const std::string form = folder.write("form.pdf", read_text_file(KINDS));
    const std::string map = folder.write("map.json", "{}");
    for (const std::string& file : {form, rows, map}) {
        const std::string before = read_text_file(file);
        EXPECT_EQ(fill({"-o", ids, "--map", map, "--manifest", file, "--resume"}, form).exit, 2);
        EXPECT_EQ(fill({"--as", "zip", "-o", file, "--map", map}, form).exit, 2);
        EXPECT_EQ(read_text_file(file), before);
    }
    const std::string notes = folder.write("notes.txt", "keep this");
    EXPECT_THAT(fill({"-o", ids, "--manifest", notes, "--resume"}).err, HasSubstr("it is no manifest"));
    EXPECT_EQ(read_text_file(notes), "keep this");
    EXPECT_EQ(fill({"-o", manifest + ".zip", "--manifest", manifest + ".zip"}).exit, 2);
    EXPECT_TRUE(files().empty());
}

TEST_F(BatchTest, AnArchiveHoldsTheOutputsInTheirOrder)
{
    const auto outputs = files_of({"-o", ids});
    const std::string zip = folder.path("all.zip");
    EXPECT_EQ(fill({"-o", zip, "--name", "{id}.pdf", "--manifest", manifest}).exit, 3);
    EXPECT_EQ(lines()[0]["sha256"], Sha256().add(outputs.at("a.pdf")).hex());
    const std::string bytes = read_text_file(zip);
    size_t at = 0;
    for (const char* name : {"a.pdf", "b.pdf", "d.pdf", "e.pdf"}) {
        const size_t next = bytes.find(name, at);
        EXPECT_GE(next, at) << name;
        EXPECT_NE(bytes.find(outputs.at(name), next), std::string::npos) << name;
        at = next;
    }
    ::setenv("TZ", "Pacific/Kiritimati", 1);
    const CommandResult piped = fill({"-o", "-", "--as", "zip", "--jobs", "3", "--name", "{id}.pdf"});
    ::unsetenv("TZ");
    EXPECT_EQ(piped.out, bytes);
    if (std::system(("cd " + folder.path("") + " && python3 -m zipfile -e all.zip unpacked").c_str()) == 0) {
        EXPECT_EQ(files("unpacked"), outputs);
    }
    EXPECT_EQ(fill({"-o", zip, "--name", "{id}", "--updates-only", "--dry-run"}).exit, 3);
    EXPECT_EQ(read_text_file(zip), bytes);
    EXPECT_EQ(fill({"-o", folder.path("none/all.zip")}).exit, 1);
    // Repeated, its manifest begins anew; names are UTF-8 whatever the locale.
    EXPECT_EQ(fill({"-o", zip, "--name", "{id} {name}.pdf", "--manifest", manifest}).exit, 3);
    EXPECT_EQ(lines().size(), 5u);
    const size_t name = read_text_file(zip).find("b 東京 Bob.pdf");
    ASSERT_NE(name, std::string::npos);
    EXPECT_EQ(read_text_file(zip)[name - 30 + 7] & 8, 8) << "the flag of UTF-8 names";
}
}  // namespace
