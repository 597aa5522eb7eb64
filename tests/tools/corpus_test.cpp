// Real files: `formwork list --json` against what an independent reader saw, and `formwork fill` against the input, our
// own list and qpdf.

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "tests/tools/command_run.h"

namespace {
using nlohmann::ordered_json;
namespace fs = std::filesystem;

const std::vector<std::string> TEXT = {"Z", "o", "ë", " ", "Ж", " ", "名"};

// What goes into a field of `list --json`; null when it takes nothing.
ordered_json value_for(const ordered_json& field)
{
    if (field["kind"] == "check" && !field["widgets"].empty())
        return field["states"].size() > 1 ? field["states"].back() : ordered_json(true);
    if (field["type"] == "choice" && !field["options"].empty())
        return field["options"].back()["value"];
    if (field["kind"] != "text")
        return nullptr;
    std::string text;
    for (size_t i = 0; i < TEXT.size() && (field["maxLength"].is_null() || i < field["maxLength"]); ++i)
        text += TEXT[i];
    return text;
}

ordered_json list(const CommandFolder& folder, const std::string& file)
{
    return ordered_json::parse(folder.run({"list", "--json", file}).out);
}

// The fields with what goes into them, the first of each name.
ordered_json values_for(const ordered_json& fields)
{
    ordered_json values = ordered_json::object();
    for (const ordered_json& field : fields) {
        const ordered_json value = value_for(field);
        if (!value.is_null() && !values.contains(field["name"]))
            values[field["name"].get<std::string>()] = value;
    }
    return values;
}

// The complaints of qpdf, without the name of the file; none where there is no qpdf.
std::set<std::string> qpdf_complaints(const CommandFolder& folder, const std::string& file)
{
    const std::string said = folder.path("qpdf");
    if (std::system("qpdf --version >/dev/null 2>&1") != 0)
        return {};
    std::system(("qpdf --check '" + file + "' >/dev/null 2>'" + said + "'").c_str());
    std::set<std::string> lines;
    std::istringstream stream(read_text_file(said));
    for (std::string line; std::getline(stream, line);) {
        const size_t at = line.find(file);
        lines.insert(at == std::string::npos ? line : line.erase(at, file.size()));
    }
    return lines;
}

class CorpusFileTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CorpusFileTest);
INSTANTIATE_TEST_SUITE_P(RealFiles, CorpusFileTest, testing::ValuesIn(corpus_sample()), file_label);

TEST_P(CorpusFileTest, EveryFieldIsFilled)
{
    const CommandFolder folder;
    const std::string& file = GetParam();
    const std::string out = folder.path("out.pdf");
    if (folder.run({"list", file}).exit != 0)
        GTEST_SKIP() << "refused";
    ordered_json values = values_for(list(folder, file));
    const std::string data = folder.write("data.json", values.dump());
    // Formats of dates and the like refuse the value that is for any text field.
    const CommandResult result = folder.run({"fill", file, "--data", data, "--force", "--scripts", "off", "-o", out});
    ASSERT_EQ(result.exit, 0) << result.err;
    const std::string input = read_text_file(file);
    EXPECT_EQ(read_text_file(out).compare(0, input.size(), input), 0) << "the input's bytes are gone";
    for (const ordered_json& field : list(folder, out)) {
        const auto value = values.find(field["name"]);
        if (value == values.end())
            continue;
        if (field["kind"] == "check")
            EXPECT_TRUE(field["value"].is_string() && field["value"] != "Off") << field;
        else
            EXPECT_EQ(field["value"], *value) << field;
        values.erase(value);
    }
    EXPECT_TRUE(values.empty()) << values;
    const std::set<std::string> before = qpdf_complaints(folder, file);
    for (const std::string& line : qpdf_complaints(folder, out))
        EXPECT_TRUE(before.count(line)) << line;
}

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
    const CommandFolder folder;
    if (corpus_files().empty())
        GTEST_SKIP() << "FORMWORK_CORPUS names no folder with real files";
    size_t compared = 0;
    for (const std::string& file : corpus_files()) {
        SCOPED_TRACE(file);
        const CommandResult listed = folder.run({"list", "--json", file});
        const std::string expected =
            (fs::path(file).parent_path() / "expected" / fs::path(file).stem()).string() + ".json";
        if (listed.exit != 0) {
            EXPECT_EQ(listed.exit, 1);
            EXPECT_EQ(std::count(listed.err.begin(), listed.err.end(), '\n'), 1);
            const bool encrypted = read_text_file(file).find("/Encrypt") != std::string::npos;
            EXPECT_TRUE(encrypted || !fs::exists(expected)) << "readable for others";
            continue;
        }
        if (!fs::exists(expected))
            continue;
        ordered_json ours = ordered_json::parse(listed.out);
        std::erase_if(ours.get_ref<ordered_json::array_t&>(), [](const auto& at) { return at["kind"] == "data"; });
        const ordered_json theirs = ordered_json::parse(read_text_file(expected));
        ASSERT_EQ(ours.size(), theirs.size());
        for (size_t i = 0; i < ours.size(); ++i)
            EXPECT_EQ(as_expected(ours[i]), theirs[i]);
        ++compared;
    }
    EXPECT_GT(compared, 0u);
}
}  // namespace
