// Cuts and flips real files and does with each what the command does: list as JSON, fill every field, export in every format,
// draw. For each file one process does this in turn and is watched: a crash, more than 10 s or more than 1 GiB is a finding,
// which is kept with its bytes, and another process goes on behind it.
//
//     mutate [--flips N] [--part I/N] [--keep FOLDER] FILE...
//
// A file's mutations depend on its bytes alone. Ends with a table and 1 where there are findings.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/form_check.h"
#include "fuzz/read_check.h"
#include "render/cairo/cairo_picture.h"
#include "render/page/draw_page.h"

// Blocks that wait for their reuse would count as memory in use.
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=4:thread_local_quarantine_size_kb=64:allocator_release_to_os_interval_ms=0:detect_leaks=1";
}

namespace {

constexpr int CUTS = 64;
constexpr double LONGEST = 10;        // seconds of processor time
constexpr double LONGEST_WAIT = 120;  // of any time, on a machine that others use
constexpr long MOST_MEMORY = 1024;    // MiB

using Bytes = std::vector<uint8_t>;

// What the process at work tells the one that watches.
struct PROGRESS {
    std::atomic<int> index;     // of the mutation
    std::atomic<int> work;      // index in WORK_NAMES
    std::atomic<double> began;  // processor time
    std::atomic<double> slowest;
    std::atomic<long> memory;  // MiB
    std::atomic<int> opened;
};
PROGRESS* progress;

constexpr const char* WORK_NAMES[] = {"open and list", "export", "draw", "fill and save"};

double seconds_of(clockid_t clock)
{
    timespec time = {};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Numbers of a linear generator, the same on every machine.
class Numbers {
public:
    explicit Numbers(uint64_t seed) : m_state(seed) {}
    uint64_t next(uint64_t below)
    {
        m_state = m_state * 6364136223846793005u + 1442695040888963407u;
        return (m_state >> 33) % below;
    }

private:
    uint64_t m_state;
};

uint64_t hash_of(const Bytes& bytes)
{
    uint64_t hash = 14695981039346656037u;
    for (const uint8_t byte : bytes)
        hash = (hash ^ byte) * 1099511628211u;
    return hash;
}

// Mutation 0 to CUTS - 1 cuts the file, every other one flips one to eight bits of it.
Bytes mutated(const Bytes& bytes, int index)
{
    if (index < CUTS)
        return {bytes.begin(),
                bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() * static_cast<size_t>(index) / CUTS)};
    Numbers numbers(hash_of(bytes) + static_cast<uint64_t>(index));
    numbers.next(1);
    Bytes out = bytes;
    for (uint64_t flips = uint64_t{1} << numbers.next(4); flips > 0; --flips)
        out[numbers.next(out.size())] ^= static_cast<uint8_t>(1u << numbers.next(8));
    return out;
}

void draw_first_page(CPDFDocument& document)
{
    constexpr double MOST_PIXELS = 1 << 22;
    PDF_DRAWN_PAGE page = {};
    if (!find_page(document, 1, page).ok())
        return;
    const CPDFPageView view(page.box, 1);
    const PICTURE_SIZE size = view.size();
    CPDFPicture picture;
    if (size.width * size.height > MOST_PIXELS ||
        !picture.create(static_cast<int>(size.width), static_cast<int>(size.height)))
        return;
    draw_buttons(document, page.ref, view, picture);
}

void list(const Bytes& bytes)
{
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (document.open(bytes).ok())
        list_all(document);
}

void work_on(const Bytes& bytes)
{
    progress->work = 0;
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    const CPDFStatus status = document.open(bytes);
    check(status.ok() || !status.text.empty(), "a refusal has no sentence");
    if (!status.ok())
        return;
    ++progress->opened;
    list(bytes);
    progress->work = 1;
    export_all(document);
    progress->work = 2;
    draw_first_page(document);
    progress->work = 3;
    const char* wrong = fill_fault(document, SIZE_MAX, 0);
    if (!wrong)
        wrong = save_fault(document, bytes);
    if (wrong)
        fault(wrong);
}

// The most memory that a process had at once, in MiB.
long peak_memory(pid_t process, const char* key)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key))
            return std::atol(line.c_str() + std::string_view(key).size()) >> 10;
    }
    return 0;
}

void forget_peak_memory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

template <typename T>
void raise_to(std::atomic<T>& most, T value)
{
    if (most < value)
        most = value;
}

[[noreturn]] void do_mutations(const Bytes& bytes, int first, int count, const std::string& log)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = ::open("/dev/null", O_WRONLY);
    const int errors = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    for (int i = first; i < count; ++i) {
        forget_peak_memory();
        const double began = seconds_of(CLOCK_PROCESS_CPUTIME_ID);
        progress->began = began;
        progress->index = i;
        work_on(mutated(bytes, i));
        raise_to(progress->slowest, seconds_of(CLOCK_PROCESS_CPUTIME_ID) - began);
        raise_to(progress->memory, peak_memory(::getpid(), "VmHWM:"));
    }
    progress->index = count;
    std::exit(0);
}

// Waits for a process at work. Returns what went wrong; empty when nothing did.
std::string watch(pid_t process)
{
    clockid_t clock = 0;
    ::clock_getcpuclockid(process, &clock);
    int index = -1;
    double since = 0;
    for (;;) {
        int status = 0;
        if (::waitpid(process, &status, WNOHANG) == process)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? "" : "crash";
        const double now = seconds_of(CLOCK_MONOTONIC);
        if (progress->index != index) {
            index = progress->index;
            since = now;
        }
        const bool hangs = seconds_of(clock) - progress->began > LONGEST || now - since > LONGEST_WAIT;
        const bool swells = peak_memory(process, "VmRSS:") > MOST_MEMORY;
        if (hangs || swells) {
            ::kill(process, SIGKILL);
            ::waitpid(process, &status, 0);
            return hangs ? "hang" : "memory";
        }
        ::usleep(20000);
    }
}

struct OPTIONS {
    int flips = 200;
    size_t part = 0;
    size_t parts = 1;
    std::string keep = "findings";
    std::vector<std::string> files;
};

Bytes read_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void keep_finding(const OPTIONS& options, const std::string& stem, const Bytes& bytes, const std::string& what)
{
    const int index = progress->index;
    const std::string path = options.keep + "/" + stem + "-" + std::to_string(index);
    std::rename((options.keep + "/" + stem + ".log").c_str(), (path + ".log").c_str());
    const Bytes out = mutated(bytes, index);
    std::ofstream(path + ".pdf", std::ios::binary)
        .write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
    std::printf("  %s, mutation %d, %s: %s.pdf\n", what.c_str(), index, WORK_NAMES[progress->work], path.c_str());
}

// Returns the number of findings.
int run_file(const OPTIONS& options, const std::string& path)
{
    const Bytes bytes = read_file(path);
    if (bytes.empty())
        fault((path + ": can't be read").c_str());
    const std::string stem = std::filesystem::path(path).stem().string();
    const std::string log = options.keep + "/" + stem + ".log";
    const int count = CUTS + options.flips;
    int findings = 0;
    progress->slowest = progress->memory = progress->opened = 0;
    for (int first = 0; first < count; first = progress->index + 1) {
        progress->index = first;
        progress->began = 0;
        std::fflush(stdout);
        const pid_t process = ::fork();
        if (process == 0)
            do_mutations(bytes, first, count, log);
        const std::string what = watch(process);
        if (!what.empty()) {
            ++findings;
            keep_finding(options, stem, bytes, what);
        }
    }
    std::remove(log.c_str());
    std::printf("%-44.44s %9d %7d %9.2f %7ld %9d\n", stem.c_str(), count, progress->opened.load(),
                progress->slowest.load(), progress->memory.load(), findings);
    std::fflush(stdout);
    return findings;
}

OPTIONS read_options(int argc, char** argv)
{
    OPTIONS options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const bool has_value = i + 1 < argc;
        if (word == "--flips" && has_value)
            options.flips = std::atoi(argv[++i]);
        else if (word == "--part" && has_value)
            check(std::sscanf(argv[++i], "%zu/%zu", &options.part, &options.parts) == 2 && options.parts > 0,
                  "--part is I/N");
        else if (word == "--keep" && has_value)
            options.keep = argv[++i];
        else
            options.files.emplace_back(word);
    }
    return options;
}

}  // namespace

int main(int argc, char** argv)
{
    const OPTIONS options = read_options(argc, argv);
    void* shared = ::mmap(nullptr, sizeof(PROGRESS), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    check(shared != MAP_FAILED, "there is not enough memory");
    progress = new (shared) PROGRESS();
    std::filesystem::create_directories(options.keep);
    std::printf("%-44s %9s %7s %9s %7s %9s\n", "file", "mutations", "opened", "slowest s", "MiB", "findings");
    int files = 0;
    int findings = 0;
    for (size_t i = options.part; i < options.files.size(); i += options.parts) {
        findings += run_file(options, options.files[i]);
        ++files;
    }
    std::printf("%d files, %d mutations, %d findings\n", files, files * (CUTS + options.flips), findings);
    return findings ? 1 : 0;
}
