#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "document/document.h"

namespace {

std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Fills the sample and saves it to `out` in a process that is killed by the write that makes a file longer than `most` bytes
// (0: by none). Returns whether it was killed.
bool save_killed_after(rlim_t most, const std::string& out)
{
    const pid_t child = fork();
    if (child == 0) {
        CPDFDocument document;
        CPDFStatus status = document.open(std::string(FORMWORK_SAMPLES_DIR) + "/kinds.pdf");
        CPDFField* field = status.ok() ? document.field("name") : nullptr;
        if (!field || !document.set_value(*field, "Grace").ok())
            _exit(2);
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit limit = {most, most};
        if (most)
            setrlimit(RLIMIT_FSIZE, &limit);
        status = document.save(out);
        _exit(status.ok() ? 0 : 1);
    }
    int how = 0;
    waitpid(child, &how, 0);
    EXPECT_TRUE(WIFSIGNALED(how) || WEXITSTATUS(how) == 0) << WEXITSTATUS(how);
    return WIFSIGNALED(how);
}

}  // namespace

TEST(KilledWriteTest, TheTargetIsTheOldFileOrTheNewOne)
{
    const std::string folder = testing::TempDir() + "formwork-killed-" + std::to_string(getpid());
    std::filesystem::create_directories(folder);
    const std::string out = folder + "/out.pdf";
    ASSERT_FALSE(save_killed_after(0, out));
    const std::string whole = contents(out);
    ASSERT_GT(whole.size(), 1000u);

    int killed = 0;
    for (const size_t most : {size_t{1}, size_t{500}, whole.size() / 2, whole.size() - 1, whole.size()}) {
        SCOPED_TRACE(most);
        std::ofstream(out, std::ios::binary | std::ios::trunc) << "old";
        const bool was_killed = save_killed_after(most, out);
        killed += was_killed;
        EXPECT_EQ(contents(out), was_killed ? "old" : whole);
    }
    EXPECT_EQ(killed, 4);
    std::filesystem::remove_all(folder);
}
