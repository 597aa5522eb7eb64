// Holds `formwork list --json` against what an independent reader saw in real files.

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "tests/tools/command_run.h"

namespace {

using nlohmann::ordered_json;
namespace fs = std::filesystem;

// The properties that the expected lists have, in their form.
ordered_json as_expected(const ordered_json& field)
{
    const std::map<std::string, const char*> types = {
        {"text", "Tx"}, {"button", "Btn"}, {"choice", "Ch"}, {"signature", "Sig"}, {"unknown", ""}};
    ordered_json options = ordered_json::array();
    for (const ordered_json& option : field["options"])
        options.push_back({option["value"], option["text"]});
    return {{"name", field["name"]},   {"type", types.at(field["type"])},
            {"flags", field["flags"]}, {"value", field["value"]},
            {"options", options},      {"num", field["object"]}};
}

TEST(CorpusTest, ListsAgreeWithTheExpectedOnes)
{
    const char* corpus = std::getenv("FORMWORK_CORPUS");
    if (!corpus || !fs::is_directory(fs::path(corpus) / "expected"))
        GTEST_SKIP() << "FORMWORK_CORPUS names no folder with real files";
    CommandFolder folder;
    size_t compared = 0;
    for (const std::string& file : pdf_files(corpus)) {
        SCOPED_TRACE(file);
        const CommandResult listed = folder.run({"list", "--json", file});
        const std::string expected = (fs::path(corpus) / "expected" / fs::path(file).stem()).string() + ".json";
        if (listed.exit != 0) {
            std::printf("refused: %s", listed.err.c_str());
            EXPECT_EQ(listed.exit, 1);
            EXPECT_EQ(std::count(listed.err.begin(), listed.err.end(), '\n'), 1);
            const bool encrypted = read_text_file(file).find("/Encrypt") != std::string::npos;
            EXPECT_TRUE(encrypted || !fs::exists(expected)) << "readable for others";
            continue;
        }
        if (!fs::exists(expected))
            continue;
        const ordered_json ours = ordered_json::parse(listed.out);
        const ordered_json theirs = ordered_json::parse(read_text_file(expected));
        ASSERT_EQ(ours.size(), theirs.size());
        for (size_t i = 0; i < ours.size(); ++i)
            EXPECT_EQ(as_expected(ours[i]), theirs[i]);
        ++compared;
    }
    EXPECT_GT(compared, 0u);
    std::printf("%zu files compared\n", compared);
}

}  // namespace
