// Wherever memory runs out in a run of the command, the run says so and leaves nothing behind, or does all that it should.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "tests/support/memory_document.h"
#include "tests/support/new_hook.h"
#include "tests/support/pdf_builder.h"
#include "tools/command.h"

#ifdef FORMWORK_ALLOC_HOOK

namespace {

struct Outcome {
    int exit = 0;
    std::string out;
    std::string err;
    std::string file;
    bool operator==(const Outcome&) const = default;
};

// Standard output or error, kept in a file while one lives.
class Redirection {
public:
    Redirection(int fd, const std::string& path) : m_fd(fd), m_kept(::dup(fd))
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        ::dup2(file, fd);
        ::close(file);
    }
    ~Redirection()
    {
        ::dup2(m_kept, m_fd);
        ::close(m_kept);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;

private:
    int m_fd;
    int m_kept;
};

// What can run out. `has_failed` holds until the next fail_after.
struct Memory {
    const char* name;
    void (*fail_after)(int64_t count);
    bool (*has_failed)(int64_t count);
};

constexpr Memory ENGINE = {"engine allocation", vx_fail_after, [](int64_t) { return vx_has_failed(); }};
constexpr Memory NEW = {"new", fail_new_after, [](int64_t count) { return new_calls() > count; }};

class MemoryWalk : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_streams.write("data.json",
                        R"({"name": "x", "address.city": "Bern", "agree": true, "toppings": ["ch", "on"]})");
        m_streams.write("rows.csv", "name,file\nBob,out\n");
        run("draw KINDS --page 1 -o PNG", ENGINE, -1);
    }

    // Runs the command in this process, allocation `count` + 1 failing, -1 for none. Its output is removed.
    Outcome run(const std::string& line, const Memory& memory, int64_t count)
    {
        std::vector<std::string> words = words_of(line);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        std::fflush(stdout);
        Outcome outcome;
        {
            const Redirection out(STDOUT_FILENO, m_streams.path("out"));
            const Redirection err(STDERR_FILENO, m_streams.path("err"));
            memory.fail_after(count);
            outcome.exit = run_command(static_cast<int>(arguments.size()), arguments.data());
            m_ran_out = memory.has_failed(count);
            memory.fail_after(-1);
            std::fflush(stdout);
        }
        outcome.out = read_text_file(m_streams.path("out"));
        outcome.err = read_text_file(m_streams.path("err"));
        outcome.file = read_text_file(m_folder.path("out"));
        std::filesystem::remove(m_folder.path("out"));
        return outcome;
    }

    // Lets every `stride`-th allocation of the run fail, from `first` on.
    void walk(const std::string& line, const Memory& memory, int64_t first, int64_t stride)
    {
        SCOPED_TRACE(line);
        const Outcome whole = run(line, memory, -1);
        ASSERT_EQ(whole.exit, 0) << whole.err;
        for (int64_t n = first; !HasFailure(); n += stride) {
            SCOPED_TRACE(memory.name + (" " + std::to_string(n + 1)) + " fails");
            const int64_t live = vx_live_blocks();
            const Outcome got = run(line, memory, n);
            if (!m_ran_out)
                return;
            EXPECT_EQ(vx_live_blocks(), live) << "leak";
            EXPECT_EQ(m_folder.files(), 0) << "a temporary file is left";
            if (got == whole)
                continue;
            EXPECT_EQ(got.exit, 1);
            EXPECT_NE(got.err.find("there is not enough memory"), std::string::npos) << got.err;
            // A batch keeps the rows that were done.
            const bool is_kept = line.find("--batch") != std::string::npos && got.file == whole.file;
            EXPECT_TRUE(got.file.empty() || is_kept) << got.file;
        }
    }

private:
    std::vector<std::string> words_of(const std::string& line) const
    {
        std::vector<std::string> words = split("formwork " + line, ' ');
        const std::pair<const char*, std::string> paths[] = {
            {"KINDS", FORMWORK_SAMPLES_DIR "/kinds.pdf"},
            {"XFA", FORMWORK_SAMPLES_DIR "/xfa.pdf"},
            {"STREAMS", FORMWORK_SAMPLES_DIR "/object-streams.pdf"},
            {"UPDATES", FORMWORK_SAMPLES_DIR "/updates.pdf"},
            {"JSON", m_streams.path("data.json")},
            {"ROWS", m_streams.path("rows.csv")},
            {"PNG", m_streams.path("over.png")},
            {"OUT", m_folder.path("out")},
            {"OUTS", m_folder.path("{file}")},
        };
        for (std::string& word : words) {
            for (const auto& [name, path] : paths)
                word = word == name ? path : word;
        }
        return words;
    }

    TempFolder m_folder;
    TempFolder m_streams;
    bool m_ran_out = false;
};

constexpr const char* SMALL[] = {
    "list UPDATES",
    "list --json UPDATES",
    "get UPDATES owner added",
    "fill UPDATES status=open owner=me -o OUT",
    "reset UPDATES -o OUT",
    "export UPDATES --as xml -o OUT",
    "export UPDATES --as json",
    "remove UPDATES owner -o OUT",
    "rename UPDATES owner holder -o OUT",
    "set UPDATES added --max-length 20 -o OUT",
};

constexpr const char* LARGE[] = {
    "list KINDS",
    "list --json KINDS",
    "list --json XFA",
    "list STREAMS",
    "get KINDS name toppings",
    "get STREAMS order.remark",
    "actions KINDS",
    "actions --json XFA",
    "fill KINDS name=東京 size=1 agree=true title=Lady toppings=ch -o OUT",
    "fill KINDS --data JSON --report -o OUT",
    "fill STREAMS payment=bill order.number=5 --no-appearance -o OUT",
    "fill XFA --xfa form1[0].page1[0].amount[1]=7 -o OUT",
    "fill KINDS name=Bob --flatten -o OUT",
    "fill KINDS --batch ROWS --jobs 2 -o OUTS",
    "fill KINDS --batch ROWS --updates-only -o OUTS",
    "fill KINDS --batch ROWS --as zip --name {file}.pdf -o OUT",
    "reset KINDS -o OUT",
    "reset XFA --xfa -o OUT",
    "export KINDS --as url",
    "export XFA --as xfa",
    "export KINDS --as fdf",
    "export KINDS --as xfdf -o OUT",
    "export KINDS name size --as csv",
    "remove KINDS address colour signature -o OUT",
    "rename KINDS name called --under company -o OUT",
    "add KINDS radio company.choice --rect 100,500,90,20 --state S --state M -o OUT",
    "set KINDS language --option de=D --option en --required on -o OUT",
    "draw KINDS --page 1 --over PNG -o OUT",
};

TEST_F(MemoryWalk, EveryEngineAllocationOfASmallForm)
{
    for (const char* line : SMALL)
        walk(line, ENGINE, 0, 1);
}

// Each run begins elsewhere, so that together they meet more places.
TEST_F(MemoryWalk, EngineAllocations)
{
    int64_t first = 0;
    for (const char* line : LARGE)
        walk(line, ENGINE, ++first, 31);
}

TEST_F(MemoryWalk, New)
{
    int64_t first = 0;
    for (const char* line : LARGE)
        walk(line, NEW, ++first, 101);
}

}  // namespace

#endif
