#include "file/rescue/rescue.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "file/descriptor.h"
#include "file/rescue/qpdf_library.h"

namespace {

// What qpdf may take: so much for any file and so much for each of its bytes.
constexpr size_t MEMORY = size_t{256} << 20;
constexpr size_t MEMORY_PER_BYTE = 16;
constexpr size_t SECONDS = 2;
constexpr size_t BYTES_PER_SECOND = size_t{4} << 20;

enum class RESCUE_END : int {
    DIED,  // before it could say anything
    DONE,
    REFUSED,    // what() says why
    NO_ROOM,    // for the copy
    ENCRYPTED,  // the password is wrong
};

// How the other process ended: memory that both share.
class SharedOutcome {
public:
    SharedOutcome()
    {
        void* memory = ::mmap(nullptr, sizeof(OUTCOME), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        m_outcome = memory == MAP_FAILED ? nullptr : static_cast<OUTCOME*>(memory);
    }
    ~SharedOutcome()
    {
        if (m_outcome)
            ::munmap(m_outcome, sizeof(OUTCOME));
    }
    SharedOutcome(const SharedOutcome&) = delete;
    SharedOutcome& operator=(const SharedOutcome&) = delete;

    explicit operator bool() const { return m_outcome != nullptr; }
    RESCUE_END end() const { return m_outcome->end; }
    const char* what() const { return m_outcome->what; }

    // Ends the process that calls.
    [[noreturn]] void end_with(RESCUE_END end, const char* what = "")
    {
        std::strncpy(m_outcome->what, what, sizeof m_outcome->what - 1);  // zeros follow
        m_outcome->end = end;
        ::_exit(0);
    }

private:
    struct OUTCOME {
        RESCUE_END end;
        char what[160];
    };

    OUTCOME* m_outcome;  // owned
};

void set_limit(__rlimit_resource resource, rlim_t most)
{
    rlimit limit = {};
    ::getrlimit(resource, &limit);
    limit.rlim_cur = std::min(limit.rlim_cur, most);
    limit.rlim_max = std::min(limit.rlim_max, most);
    ::setrlimit(resource, &limit);
}

size_t address_space()
{
    size_t pages = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "re")) {
        if (std::fscanf(file, "%zu", &pages) != 1)
            pages = 0;
        std::fclose(file);
    }
    return pages * static_cast<size_t>(::sysconf(_SC_PAGESIZE));
}

// The new process lets go of all that it shares with the program: signals kill it, its messages go nowhere, it ends with the
// program.
void leave_program()
{
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nowhere, fd);
}

void bound_work(size_t size)
{
    const size_t seconds = SECONDS + size / BYTES_PER_SECOND;
    set_limit(RLIMIT_CORE, 0);
    set_limit(RLIMIT_CPU, seconds);
    if (const size_t now = address_space())
        set_limit(RLIMIT_AS, now + MEMORY + MEMORY_PER_BYTE * size);
    ::alarm(static_cast<unsigned>(3 * seconds));
}

bool write_all(int fd, const unsigned char* data, size_t size)
{
    while (size > 0) {
        const ssize_t done = ::write(fd, data, size);
        if (done <= 0)
            return false;
        data += done;
        size -= static_cast<size_t>(done);
    }
    return true;
}

// Runs in the new process, in which no thread but this one lives.
[[noreturn]] void repair(const QPDF_LIBRARY& qpdf, std::string_view file, const char* password, int copy,
                         SharedOutcome& outcome)
{
    leave_program();
    bound_work(file.size());
    qpdf_data job = nullptr;
    const auto read = [&](const char* with) {
        job = qpdf.qpdf_init();
        qpdf.qpdf_silence_errors(job);
        qpdf.qpdf_set_suppress_warnings(job, QPDF_TRUE);
        qpdf.qpdf_set_attempt_recovery(job, QPDF_TRUE);
        return qpdf.qpdf_read_memory(job, "the file", file.data(), file.size(), with);
    };
    const auto need = [&](QPDF_ERROR_CODE code) {
        if (!(code & QPDF_ERRORS))
            return;
        qpdf_error error = qpdf.qpdf_get_error(job);
        const bool locked = qpdf.qpdf_get_error_code(job, error) == qpdf_e_password;
        outcome.end_with(locked ? RESCUE_END::ENCRYPTED : RESCUE_END::REFUSED,
                         qpdf.qpdf_get_error_message_detail(job, error));
    };
    // As for sound files, the empty password goes first.
    QPDF_ERROR_CODE code = read("");
    if ((code & QPDF_ERRORS) && *password)
        code = read(password);
    need(code);
    need(qpdf.qpdf_init_write_memory(job));
    qpdf.qpdf_set_stream_data_mode(job, qpdf_s_preserve);
    qpdf.qpdf_set_decode_level(job, qpdf_dl_none);
    qpdf.qpdf_set_compress_streams(job, QPDF_FALSE);
    qpdf.qpdf_set_object_stream_mode(job, qpdf_o_preserve);
    qpdf.qpdf_set_preserve_encryption(job, QPDF_TRUE);
    // The same damaged file gives the same copy, but for encrypted ones, whose keys stand on the identifier that they have.
    if (!qpdf.qpdf_is_encrypted(job))
        qpdf.qpdf_set_deterministic_ID(job, QPDF_TRUE);
    need(qpdf.qpdf_write(job));
    const bool written = write_all(copy, qpdf.qpdf_get_buffer(job), qpdf.qpdf_get_buffer_length(job));
    outcome.end_with(written ? RESCUE_END::DONE : RESCUE_END::NO_ROOM);
}

CPDFStatus no_process()
{
    return CPDFStatus::failed(PDF_CODE::IO, std::string("repairing it is not possible: ") + std::strerror(errno));
}

CPDFStatus status_of(const SharedOutcome& outcome)
{
    switch (outcome.end()) {
    case RESCUE_END::DONE:
        return {};
    case RESCUE_END::ENCRYPTED:
        return CPDFStatus::failed(PDF_CODE::ENCRYPTED, "repairing it needs its password");
    case RESCUE_END::NO_ROOM:
        return CPDFStatus::failed(PDF_CODE::IO, "there is no room for a repaired copy");
    case RESCUE_END::REFUSED:
        return CPDFStatus::failed(PDF_CODE::DAMAGED, std::string("it can't be repaired: ") + outcome.what());
    case RESCUE_END::DIED:
        break;
    }
    return CPDFStatus::failed(PDF_CODE::DAMAGED, "repairing it takes more time or memory than its size justifies");
}

}  // namespace

CPDFStatus rescue_file(const uint8_t* data, size_t size, const std::string& password, CPDFFileBytes& out)
{
    const QPDF_LIBRARY& qpdf = qpdf_library();
    if (!qpdf.problem.empty())
        return CPDFStatus::failed(PDF_CODE::DAMAGED, qpdf.problem);
    CPDFDescriptor copy(::memfd_create("repaired copy", MFD_CLOEXEC));
    SharedOutcome outcome;
    if (copy.get() < 0 || !outcome)
        return no_process();
    const pid_t child = ::fork();
    if (child == 0)
        repair(qpdf, {reinterpret_cast<const char*>(data), size}, password.c_str(), copy.get(), outcome);
    if (child < 0)
        return no_process();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    CPDFStatus status = status_of(outcome);
    return status.ok() ? out.open(copy.release()) : status;
}
