#include "file/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

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
    off64_t from = 0;
    while (input.descriptor >= 0 && !left.empty()) {
        const ssize_t done = ::copy_file_range(input.descriptor, &from, fd, nullptr, left.size(), 0);
        if (done <= 0)
            break;
        left.remove_prefix(static_cast<size_t>(done));
    }
    return write_all(fd, left) && write_all(fd, update);
}

// Devices and pipes can't be replaced by a file of the same name.
bool is_special(const std::string& path)
{
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
}

bool write_special(const std::string& path, const PDF_OUTPUT_INPUT& input, std::string_view update)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool written = write_all(fd, input.bytes) && write_all(fd, update);
    return ::close(fd) == 0 && written;
}

// What newly created files must not have. It can't be read without being set, which no two threads may do at once.
mode_t creation_mask()
{
    static const mode_t MASK = [] {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        return mask;
    }();
    return MASK;
}

// A temporary file that is removed unless it is renamed to its target.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& target) : m_path(target + ".XXXXXX")
    {
        m_fd = ::mkostemp(m_path.data(), O_CLOEXEC);
    }

    ~TemporaryFile()
    {
        if (m_fd >= 0) {
            ::close(m_fd);
            ::unlink(m_path.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool is_open() const { return m_fd >= 0; }

    bool write(const PDF_OUTPUT_INPUT& input, std::string_view update) const { return write_all(m_fd, input, update); }

    // The mode of the file that is replaced, else what a newly created file has.
    bool set_mode_like(const std::string& target) const
    {
        struct stat info = {};
        if (::stat(target.c_str(), &info) == 0)
            return ::fchmod(m_fd, info.st_mode & 07777) == 0;
        return ::fchmod(m_fd, 0666 & ~creation_mask()) == 0;
    }

    bool rename_to(const std::string& target)
    {
        if (::fsync(m_fd) != 0 || ::rename(m_path.c_str(), target.c_str()) != 0)
            return false;
        ::close(m_fd);
        m_fd = -1;
        return true;
    }

private:
    std::string m_path;
    int m_fd = -1;  // owned
};

// A link is followed, so that the file it names is replaced and not the link.
std::string real_target(const std::string& path)
{
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) ? resolved : path;
}

}  // namespace

CPDFStatus write_file(const std::string& path, const PDF_OUTPUT_INPUT& input, std::string_view update)
{
    const std::string target = real_target(path);
    errno = 0;
    const auto failure = [&path] {
        return CPDFStatus::failed(PDF_CODE::IO, "the output " + path + " can't be written: " + std::strerror(errno));
    };
    if (is_special(path))
        return write_special(path, input, update) ? CPDFStatus() : failure();
    TemporaryFile file(target);
    if (!file.is_open() || !file.write(input, update) || !file.set_mode_like(target) || !file.rename_to(target))
        return failure();
    return {};
}
