#include "script/sandbox/sandbox.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <ctime>

#include "script/functions/number.h"
#include "script/sandbox/child.h"
#include "script/sandbox/confine.h"

namespace {

constexpr std::string_view NO_PROCESS = "no process could be started for it";

// All signals stay out until the child has put back what they do.
class SignalsBlocked {
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t m_before{};
};

double seconds_of(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

CPDFScriptSandbox::CPDFScriptSandbox(const SCRIPT_LIMITS& limits) : m_limits(limits)
{
    constexpr double LEAST = 0.001;
    constexpr double MOST = 1e6;
    m_limits.seconds = limits.seconds >= LEAST ? std::min(limits.seconds, MOST) : LEAST;
}

bool CPDFScriptSandbox::start()
{
    stop();
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    const pid_t parent = getpid();
    {
        const SignalsBlocked blocked;
        m_child = fork();
        if (m_child == 0)
            _exit(confine(ends[1], SCRIPT_MEMORY_MAX + SCRIPT_MEMORY_BESIDE, parent) ? serve_scripts(0)
                                                                                     : SCRIPT_EXIT_UNCONFINED);
    }
    close(ends[1]);
    m_pipe = ends[0];
    if (m_child > 0 && fcntl(m_pipe, F_SETFL, O_NONBLOCK) == 0)
        return true;
    stop();
    return false;
}

void CPDFScriptSandbox::stop()
{
    if (m_pipe >= 0)
        close(m_pipe);
    m_pipe = -1;
    m_loaded = false;
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        wait_for_end();
    }
    m_child = 0;
}

// The status that waitpid gives; 0 when somebody else took it. Counts the time of the run that it ends.
int CPDFScriptSandbox::wait_for_end()
{
    int status = 0;
    rusage usage{};
    pid_t ended = 0;
    do
        ended = wait4(m_child, &status, 0, &usage);
    while (ended < 0 && errno == EINTR);
    m_child = 0;
    if (ended > 0)
        m_used += std::max(0.0, seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime) - m_began);
    return ended < 0 ? 0 : status;
}

void CPDFScriptSandbox::renew()
{
    m_used = 0;
    m_waited = {};
    m_losses = 0;
    m_out_of_time = m_too_large = m_was_killed = false;
    if (!needs_document() && (!begin_time() || !send(write_message(SCRIPT_REQUEST::RENEW))))
        stop();
}

void CPDFScriptSandbox::load(const SCRIPT_DOCUMENT& document)
{
    const std::string message = write_message(SCRIPT_REQUEST::LOAD, document);
    m_too_large = message.size() > SCRIPT_MESSAGE_MAX;
    if (gave_up() || (m_child <= 0 && !start()))
        return;
    m_loaded = begin_time() && send(message);
    if (m_loaded)
        return;
    ++m_losses;
    stop();
}

SCRIPT_ANSWER CPDFScriptSandbox::failed(std::string fault)
{
    SCRIPT_ANSWER answer;
    answer.fault = std::move(fault);
    return answer;
}

SCRIPT_ANSWER CPDFScriptSandbox::run(const SCRIPT_RUN& run)
{
    const Clock::time_point began = Clock::now();
    SCRIPT_ANSWER answer = ask(run);
    m_waited += Clock::now() - began;
    return answer;
}

SCRIPT_ANSWER CPDFScriptSandbox::ask(const SCRIPT_RUN& run)
{
    m_was_killed = false;
    if (m_too_large)
        return failed("the form is too large for its scripts");
    if (m_out_of_time)
        return failed(time_fault());
    if (m_losses >= LOSSES_MAX)
        return failed("too many scripts before it ended their process");
    if (needs_document())
        return failed(std::string(NO_PROCESS));
    const std::string message = write_message(SCRIPT_REQUEST::RUN, run);
    if (message.size() > SCRIPT_MESSAGE_MAX)
        return failed("the script and the values are too large");
    char bytes[SCRIPT_SIZE_BYTES];
    if (!begin_time() || !send(message) || !receive(bytes, sizeof bytes))
        return failed(why_lost());
    const std::optional<size_t> size = read_message_size(bytes);
    std::string text(size.value_or(0), '\0');
    if (size && !receive(text.data(), text.size()))
        return failed(why_lost());
    SCRIPT_ANSWER answer;
    if (!size || !read_message(text, answer)) {
        ++m_losses;
        stop();
        return failed("its process answered nonsense");
    }
    m_used += std::max(0.0, processor_time() - m_began);
    return answer;
}

// Seconds of processor time that the child has used so far.
double CPDFScriptSandbox::processor_time() const
{
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(m_child, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return m_began;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// The kernel ends the child, too, should this process be stopped meanwhile. False when no time is left.
bool CPDFScriptSandbox::begin_time()
{
    m_began = processor_time();
    const rlim_t last = static_cast<rlim_t>(std::ceil(m_began + m_limits.seconds)) + 1;
    const rlimit bound{last, RLIM_INFINITY};
    prlimit(m_child, RLIMIT_CPU, &bound, nullptr);
    m_ends = Clock::now() + std::chrono::milliseconds(static_cast<int64_t>(m_limits.seconds * 2000) + 3000) - m_waited;
    m_out_of_time = m_used >= m_limits.seconds;
    return !m_out_of_time;
}

// Waits until the pipe is ready. False when time is up.
bool CPDFScriptSandbox::wait_for(short events)
{
    bool asked = false;  // most answers come before the clock of the child is worth a look
    for (;;) {
        const double left = asked ? m_limits.seconds - m_used - (processor_time() - m_began) : 0.01;
        m_out_of_time = left <= 0 || Clock::now() >= m_ends;
        if (m_out_of_time)
            return false;
        pollfd wanted{m_pipe, events, 0};
        const int ready = poll(&wanted, 1, std::clamp(static_cast<int>(left * 1000), 1, 1000));
        if (ready > 0 || (ready < 0 && errno != EINTR))
            return ready > 0;
        asked = true;
    }
}

bool CPDFScriptSandbox::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(m_pipe, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0)
            bytes.remove_prefix(static_cast<size_t>(sent));
        else if (errno != EINTR && (errno != EAGAIN || !wait_for(POLLOUT)))
            return false;
    }
    return true;
}

bool CPDFScriptSandbox::receive(char* bytes, size_t size)
{
    while (size > 0) {
        const ssize_t got = ::recv(m_pipe, bytes, size, 0);
        if (got == 0)
            return false;
        if (got > 0) {
            bytes += got;
            size -= static_cast<size_t>(got);
        } else if (errno != EINTR && (errno != EAGAIN || !wait_for(POLLIN))) {
            return false;
        }
    }
    return true;
}

std::string CPDFScriptSandbox::time_fault() const
{
    return "it took longer than " + print_number(m_limits.seconds) + (m_limits.seconds == 1 ? " second" : " seconds");
}

// Ends the child, and tells why it did not answer.
std::string CPDFScriptSandbox::why_lost()
{
    close(m_pipe);
    m_pipe = -1;
    m_loaded = false;
    const bool killed = m_out_of_time;
    // Who closed the pipe ends soon; should it not, it is ended.
    siginfo_t info{};
    for (int i = 0; !killed && info.si_pid == 0 && i < 100; ++i) {
        if (waitid(P_PID, static_cast<id_t>(m_child), &info, WEXITED | WNOWAIT | WNOHANG) != 0)
            break;
        if (info.si_pid == 0)
            usleep(1000);
    }
    m_was_killed = info.si_pid != 0 && info.si_code == CLD_KILLED && info.si_status == SIGKILL;
    ++m_losses;
    kill(m_child, SIGKILL);
    const int status = wait_for_end();
    m_out_of_time = killed || (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU);
    if (m_out_of_time)
        return time_fault();
    if (WIFEXITED(status) && WEXITSTATUS(status) == SCRIPT_EXIT_MEMORY)
        return std::string(SCRIPT_MEMORY_FAULT);
    if (WIFEXITED(status) && WEXITSTATUS(status) == SCRIPT_EXIT_UNCONFINED)
        return "its process could not be confined";
    return "its process crashed";
}
