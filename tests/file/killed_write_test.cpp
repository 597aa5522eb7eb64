#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "document/document.h"
#include "tests/support/pdf_builder.h"

namespace {
// Fills the sample and saves it to `out` in a process that is killed by the write that makes a file longer than `most`
// bytes (0: by none). Returns whether it was killed.
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
    const TempFolder folder;
    const std::string out = folder.path("out.pdf");
    ASSERT_FALSE(save_killed_after(0, out));
    const std::string whole = read_text_file(out);
    ASSERT_GT(whole.size(), 1000u);

    int killed = 0;
    for (const size_t most : {size_t{1}, size_t{500}, whole.size() / 2, whole.size() - 1, whole.size()}) {
        SCOPED_TRACE(most);
        folder.write("out.pdf", "old");
        const bool was_killed = save_killed_after(most, out);
        killed += was_killed;
        EXPECT_EQ(read_text_file(out), was_killed ? "old" : whole);
    }
    EXPECT_EQ(killed, 4);
    EXPECT_EQ(folder.files(), 1);
}
