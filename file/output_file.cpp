#include "file/output_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <tuple>
#include <utility>

#include "file/descriptor.h"
#include "file/system_copy.h"

namespace {

bool write_all(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t done = ::write(fd, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        bytes.remove_prefix(static_cast<size_t>(done));
    }
    return true;
}

// Lets the system copy the input, as far as it can between the two files, and writes what is left.
bool write_all(int fd, const PDF_OUTPUT_INPUT& input, std::string_view update)
{
    std::string_view left = input.bytes;
    if (input.descriptor >= 0)
        left.remove_prefix(system_copy(input.descriptor, fd, left.size()));
    return write_all(fd, left) && write_all(fd, update);
}

// Devices and pipes can't be replaced by a file of the same name.
bool is_special(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
}

// The names of temporary files that have one at this moment. Whoever takes a name out owns it.
std::array<std::atomic<char*>, 256> partial_names;  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a signal has no other way to them
std::atomic<bool> is_ending = false;
std::atomic<int> naming_count = 0;  // threads that give a temporary file its name
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// While one lives, remove_partial_outputs waits; once that was called, no thread gets past it any more. Signals wait, too, so
// that it never waits for the thread that it runs in.
class NamingTime {
public:
    NamingTime()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &m_before);
        ++naming_count;
        if (!is_ending)
            return;
        --naming_count;
        for (;;)
            ::pause();
    }
    ~NamingTime()
    {
        --naming_count;
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    NamingTime(const NamingTime&) = delete;
    NamingTime& operator=(const NamingTime&) = delete;

private:
    sigset_t m_before;
};

// The mode of the file that is replaced, if there is one.
bool set_mode_like(int fd, const std::string& target)
{
    struct stat info = {};
    return ::stat(target.c_str(), &info) != 0 || ::fchmod(fd, info.st_mode & 07777) == 0;
}

bool rename_to(const char* partial, const std::string& target)
{
    if (::rename(partial, target.c_str()) == 0)
        return true;
    const int problem = errno;
    ::unlink(partial);
    errno = problem;
    return false;
}

// A link is followed, so that the file it names is replaced and not the link.
std::string real_target(const std::string& path)
{
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) ? resolved : path;
}

}  // namespace

// A name beside the target, noted for remove_partial_outputs while this lives. It is the same for every output to that
// target, so that the next one takes away what a killed program left there.
class CPDFOutputFile::PartialName {
public:
    explicit PartialName(std::string path) : m_name(std::move(path))
    {
        char* name = ::strdup(m_name.c_str());
        for (std::atomic<char*>& slot : partial_names) {
            char* none = nullptr;
            if (name && slot.compare_exchange_strong(none, name)) {
                m_slot = &slot;
                return;
            }
        }
        std::free(name);  // NOLINT(cppcoreguidelines-no-malloc): strdup allocates so
    }

    ~PartialName()
    {
        if (m_slot)
            std::free(m_slot->exchange(nullptr));  // NOLINT(cppcoreguidelines-no-malloc): as above
    }

    PartialName(const PartialName&) = delete;
    PartialName& operator=(const PartialName&) = delete;

    const char* c_str() const { return m_name.c_str(); }

private:
    std::string m_name;
    std::atomic<char*>* m_slot = nullptr;  // borrowed from partial_names
};

CPDFOutputFile::CPDFOutputFile() = default;

CPDFOutputFile::~CPDFOutputFile()
{
    if (m_fd < 0)
        return;
    if (m_partial)
        ::unlink(m_partial->c_str());
    ::close(m_fd);
}

CPDFStatus CPDFOutputFile::open(const std::string& path)
{
    m_path = path;
    m_target = real_target(path);
    errno = 0;
    if (is_special(path))
        m_fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    else
        open_unnamed();
    return m_fd >= 0 ? CPDFStatus() : failure();
}

// A file without a name, of which nothing is left when the program is killed.
void CPDFOutputFile::open_unnamed()
{
    const size_t slash = m_target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : m_target.substr(0, slash + 1);
    m_fd = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    m_is_unnamed = m_fd >= 0 && ::access("/proc/self/fd", X_OK) == 0;
    if (m_is_unnamed)
        return;
    if (m_fd >= 0)
        ::close(m_fd);
    open_named();
}

// For file systems without unnamed files: a file that has its temporary name from the start. Who writes to it holds a lock;
// one without was left by a killed program. Waiting for another one ends with a file that has its target's name by now.
void CPDFOutputFile::open_named()
{
    m_partial = std::make_unique<PartialName>(m_target + ".formwork-part");
    struct stat opened = {};
    struct stat named = {};
    do {
        CPDFDescriptor file([this] {
            const NamingTime naming;
            return ::open(m_partial->c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
        }());
        m_fd = -1;
        if (file.get() < 0 || ::flock(file.get(), LOCK_EX) != 0 || ::fstat(file.get(), &opened) != 0)
            return;
        if (::stat(m_partial->c_str(), &named) == 0 && named.st_ino == opened.st_ino)
            m_fd = file.release();
    } while (m_fd < 0);
    if (::ftruncate(m_fd, 0) != 0)
        drop();
}

void CPDFOutputFile::drop()
{
    const int problem = errno;
    if (m_partial)
        ::unlink(m_partial->c_str());
    m_partial.reset();
    ::close(std::exchange(m_fd, -1));
    errno = problem;
}

CPDFStatus CPDFOutputFile::write(const PDF_OUTPUT_INPUT& input, std::string_view update)
{
    return write_all(m_fd, input, update) ? CPDFStatus() : failure();
}

CPDFStatus CPDFOutputFile::finish()
{
    const bool is_special = !m_is_unnamed && !m_partial;
    bool done = is_special || (set_mode_like(m_fd, m_target) && ::fsync(m_fd) == 0);
    if (done && m_is_unnamed)
        done = name_file();
    if (done && m_partial) {
        done = rename_to(m_partial->c_str(), m_target);
        m_partial.reset();
    }
    if (!done)
        return failure();
    return ::close(std::exchange(m_fd, -1)) == 0 || !is_special ? CPDFStatus() : failure();
}

// Gives the whole file without a name the name of the target. A name can't be given over an existing file, so it gets
// another one before. A file that has that already is whole, too, of a killed program or of somebody who writes to the same
// target at this moment, and goes to the target first; its writer finds the work done.
bool CPDFOutputFile::name_file()
{
    constexpr int ATTEMPTS = 100;
    const std::string file = "/proc/self/fd/" + std::to_string(m_fd);
    const auto link = [&file](const char* name) {
        return ::linkat(AT_FDCWD, file.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
    };
    if (link(m_target.c_str()))
        return true;
    const int problem = errno;
    const PartialName whole(m_target + ".formwork-new");
    const NamingTime naming;
    errno = problem;
    for (int i = 0; i < ATTEMPTS && errno == EEXIST; ++i) {
        const bool linked = link(whole.c_str());
        if (!linked && errno != EEXIST)
            return false;
        if (!rename_to(whole.c_str(), m_target) && errno != ENOENT)
            return false;
        if (linked)
            return true;
        errno = EEXIST;
    }
    return false;
}

CPDFStatus CPDFOutputFile::failure() const
{
    return CPDFStatus::failed(PDF_CODE::IO, "the output " + m_path + " can't be written: " + std::strerror(errno));
}

CPDFStatus write_file(const std::string& path, const PDF_OUTPUT_INPUT& input, std::string_view update)
{
    CPDFOutputFile file;
    CPDFStatus status = file.open(path);
    if (status.ok())
        status = file.write(input, update);
    return status.ok() ? file.finish() : status;
}

void finish_left_output(const std::string& path)
{
    const std::string target = real_target(path);
    const NamingTime naming;
    std::ignore = ::rename((target + ".formwork-new").c_str(), target.c_str());
    const std::string part = target + ".formwork-part";
    const CPDFDescriptor file(::open(part.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (file.get() >= 0 && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
        ::unlink(part.c_str());
}

void remove_partial_outputs()
{
    constexpr int ATTEMPTS = 1000;
    constexpr timespec MILLISECOND = {0, 1000000};
    is_ending = true;
    for (int i = 0; i < ATTEMPTS && naming_count > 0; ++i)
        ::nanosleep(&MILLISECOND, nullptr);
    for (std::atomic<char*>& slot : partial_names) {
        if (const char* name = slot.exchange(nullptr))
            ::unlink(name);
    }
}
