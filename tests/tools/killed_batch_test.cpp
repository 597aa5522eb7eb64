// A batch that is ended in the middle leaves whole outputs and nothing else.
#include <unistd.h>

#include <csignal>
#include <set>
#include <thread>

#include "tests/support/memory_document.h"
#include "tests/tools/command_run.h"

namespace {
constexpr int ROWS = 200;
constexpr const char* OLD = "%%EOF\n";  // what a file ends with

// Fills the outputs in `folder`, and is ended by `number`, if any, when so many of them are there. Returns how it ended.
int run_batch(const std::string& rows, const std::string& folder, int number = 0, int outputs = 0,
              const std::string& manifest = "")
{
    const std::string pattern = folder + "/{name}.pdf";
    const pid_t child = fork();
    if (child == 0) {
        const char* words[] = {FORMWORK_COMMAND,
                               "fill",
                               FORMWORK_SAMPLES_DIR "/kinds.pdf",
                               "--batch",
                               rows.c_str(),
                               "--jobs",
                               "3",
                               "-o",
                               pattern.c_str(),
                               "--resume",
                               "--manifest",
                               manifest.c_str(),
                               nullptr};
        if (manifest.empty())
            words[9] = nullptr;
        std::freopen((folder + "/../said").c_str(), "w", stderr);
        execv(FORMWORK_COMMAND, const_cast<char**>(words));
        _exit(126);
    }
    const auto count = [&folder] { return std::distance(std::filesystem::directory_iterator(folder), {}); };
    int how = 0;
    bool is_sent = false;
    while (number && waitpid(child, &how, WNOHANG) == 0) {
        if (count() >= outputs && !std::exchange(is_sent, true))
            kill(child, number);
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    if (!number)
        waitpid(child, &how, 0);
    return WIFSIGNALED(how) ? WTERMSIG(how) : 0;
}

std::set<std::string> names_in(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}
}  // namespace

TEST(KilledBatchTest, OutputsAreWholeAndNothingElseIsLeft)
{
    const TempFolder folder;
    std::string rows = "name\n";
    std::set<std::string> outputs;
    for (int i = 0; i < ROWS; ++i) {
        rows += "n" + std::to_string(i) + "\n";
        outputs.insert("n" + std::to_string(i) + ".pdf");
    }
    const std::string data = folder.write("rows.csv", rows);
    const std::string out = folder.path("out");
    for (const int number : {SIGKILL, SIGTERM, SIGINT}) {
        std::filesystem::remove_all(out);
        std::filesystem::create_directory(out);
        for (const int more : {1, 20, ROWS / 4}) {
            SCOPED_TRACE(std::to_string(number) + " at " + std::to_string(more));
            // Every second output replaces a file.
            for (int i = 0; i < ROWS; ++i) {
                const std::string name = out + "/n" + std::to_string(i) + ".pdf";
                i % 2 ? void(std::filesystem::remove(name))
                      : void(folder.write("out/n" + std::to_string(i) + ".pdf", OLD));
            }
            EXPECT_EQ(run_batch(data, out, number, ROWS / 2 + more), number);
            for (const std::string& name : names_in(out)) {
                const std::string named = name.substr(0, name.find(".formwork-new"));
                EXPECT_TRUE(outputs.contains(number == SIGKILL ? named : name)) << name;
                EXPECT_TRUE(read_text_file(out + "/" + name).ends_with(OLD)) << name;
            }
        }
        EXPECT_EQ(run_batch(data, out), 0);
        EXPECT_EQ(names_in(out), outputs);
    }
}

TEST(KilledBatchTest, ARunThatGoesOnLosesNothingAndDoublesNothing)
{
    const TempFolder folder;
    std::string rows = "name\n";
    for (int i = 0; i < ROWS; ++i)
        rows += "n" + std::to_string(i) + "\n";
    const std::string data = folder.write("rows.csv", rows);
    const std::string out = folder.path("out");
    const std::string manifest = folder.path("m.jsonl");
    std::filesystem::create_directory(out);
    const auto lines = [&manifest] {
        std::vector<std::string> all = split(read_text_file(manifest), '\n');
        std::erase(all, "");
        return all;
    };
    for (const int number : {SIGKILL, SIGTERM, SIGKILL, SIGINT}) {
        EXPECT_EQ(run_batch(data, out, number, static_cast<int>(names_in(out).size()) + 10, manifest), number);
        if (number != SIGKILL) {  // which may come between an output and its line
            EXPECT_EQ(lines().size(), names_in(out).size());
            EXPECT_NE(read_text_file(folder.path("said")).find(" skipped"), std::string::npos);
        }
    }
    EXPECT_EQ(run_batch(data, out, 0, 0, manifest), 0);
    std::set<std::string> done;
    for (const std::string& line : lines())
        EXPECT_TRUE(done.insert(line.substr(0, line.find(','))).second) << line;
    EXPECT_EQ(done.size(), ROWS);
    EXPECT_EQ(names_in(out).size(), ROWS);
}
