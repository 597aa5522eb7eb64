#include "script/sandbox/confine.h"

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <iterator>

// Sanitizers map memory of their own, open pipes to look at it, and say on standard error what they found.
#if defined(__SANITIZE_ADDRESS__)
#define FORMWORK_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FORMWORK_SANITIZED 1
#endif
#endif
#ifndef FORMWORK_SANITIZED
#define FORMWORK_SANITIZED 0
#endif

namespace {

#if defined(__x86_64__)
constexpr uint32_t ARCHITECTURE = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr uint32_t ARCHITECTURE = AUDIT_ARCH_AARCH64;
#else
constexpr uint32_t ARCHITECTURE = 0;  // none that a filter is written for
#endif

constexpr sock_filter load(size_t offset)
{
    return {BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<uint32_t>(offset)};
}

constexpr sock_filter answer(uint32_t action)
{
    return {BPF_RET | BPF_K, 0, 0, action};
}

// Skips the next statement when what was loaded is not `value`.
constexpr sock_filter next_if(uint32_t value)
{
    return {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, value};
}

constexpr sock_filter ALLOW = answer(SECCOMP_RET_ALLOW);
constexpr sock_filter KILL = answer(SECCOMP_RET_KILL_PROCESS);

// Memory may be mapped, never as code.
constexpr sock_filter FILTER[] = {
    load(offsetof(seccomp_data, arch)),
    {BPF_JMP | BPF_JEQ | BPF_K, 1, 0, ARCHITECTURE},
    KILL,
    load(offsetof(seccomp_data, nr)),
    next_if(__NR_read),
    ALLOW,
    next_if(__NR_write),
    ALLOW,
    next_if(__NR_exit),
    ALLOW,
    next_if(__NR_exit_group),
    ALLOW,
    next_if(__NR_brk),
    ALLOW,
    next_if(__NR_munmap),
    ALLOW,
    next_if(__NR_mremap),
    ALLOW,
    next_if(__NR_madvise),
    ALLOW,
    next_if(__NR_futex),
    ALLOW,
    next_if(__NR_clock_gettime),
    ALLOW,
    next_if(__NR_gettimeofday),
    ALLOW,
    next_if(__NR_getrandom),
    ALLOW,
    next_if(__NR_rt_sigreturn),
    ALLOW,
    next_if(__NR_rt_sigprocmask),
    ALLOW,
    {BPF_JMP | BPF_JEQ | BPF_K, 2, 0, __NR_mmap},
    {BPF_JMP | BPF_JEQ | BPF_K, 1, 0, __NR_mprotect},
    KILL,
    load(offsetof(seccomp_data, args[2])),
    {BPF_JMP | BPF_JSET | BPF_K, 0, 1, PROT_EXEC},
    KILL,
    ALLOW,
};

void reset_signals()
{
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP})
        std::signal(number, SIG_IGN);  // of the terminal: the parent decides
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void close_from(unsigned first)
{
#ifdef SYS_close_range
    if (syscall(SYS_close_range, first, ~0U, 0) == 0)
        return;
#endif
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    for (unsigned fd = first; fd < limit.rlim_cur && fd < 1U << 20; ++fd)
        close(static_cast<int>(fd));
}

bool keep_descriptor(int pipe)
{
    if (pipe != 0 && dup2(pipe, 0) != 0)
        return false;
    if constexpr (FORMWORK_SANITIZED) {
        close(1);
        close_from(3);
    } else {
        close_from(1);
    }
    return true;
}

// Bytes of address space in use; 0 when that can't be told.
size_t address_space()
{
    char text[32] = {};
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    const ssize_t size = read(file, text, sizeof text - 1);
    close(file);
    return size > 0 ? std::strtoul(text, nullptr, 10) * static_cast<size_t>(sysconf(_SC_PAGESIZE)) : 0;
}

bool limit(decltype(RLIMIT_AS) what, rlim_t value)
{
    const rlimit bound{value, value};
    return setrlimit(what, &bound) == 0;
}

bool limit_memory(size_t memory)
{
    const size_t used = address_space();
    return FORMWORK_SANITIZED || used == 0 || limit(RLIMIT_AS, used + memory);
}

// A kernel without filters leaves the other limits.
void filter_calls()
{
    const sock_fprog program{static_cast<unsigned short>(std::size(FILTER)), const_cast<sock_filter*>(FILTER)};
    if (ARCHITECTURE != 0 && !FORMWORK_SANITIZED)
        prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

// The language's dates are in UTC; the library must not look for the machine's zone once files are out of reach.
void set_zone()
{
    setenv("TZ", "UTC0", 1);
    tzset();
}

}  // namespace

bool confine(int pipe, size_t memory, pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    reset_signals();
    set_zone();
    const bool confined = getppid() == parent && limit_memory(memory) && keep_descriptor(pipe) &&
                          limit(RLIMIT_CORE, 0) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_NPROC, 0) &&
                          (FORMWORK_SANITIZED || limit(RLIMIT_NOFILE, 0)) && prctl(PR_SET_DUMPABLE, 0) == 0 &&
                          prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
    if (confined)
        filter_calls();
    return confined;
}
