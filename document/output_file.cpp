#include "document/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

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

    bool write(std::string_view bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t done = ::write(m_fd, bytes.data(), bytes.size());
            if (done < 0 && errno == EINTR)
                continue;
            if (done <= 0)
                return false;
            bytes.remove_prefix(static_cast<size_t>(done));
        }
        return true;
    }

    // The mode of the file that is replaced, else what a newly created file has.
    bool set_mode_like(const std::string& target) const
    {
        struct stat info = {};
        if (::stat(target.c_str(), &info) == 0)
            return ::fchmod(m_fd, info.st_mode & 07777) == 0;
        const mode_t mask = ::umask(0);
        ::umask(mask);
        return ::fchmod(m_fd, 0666 & ~mask) == 0;
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
    char* resolved = ::realpath(path.c_str(), nullptr);
    std::string target = resolved ? resolved : path;
    std::free(resolved);  // NOLINT(cppcoreguidelines-no-malloc): realpath allocates so
    return target;
}

}  // namespace

CPDFStatus write_file(const std::string& path, const std::vector<std::string_view>& pieces)
{
    const std::string target = real_target(path);
    const auto failure = [&path] {
        return CPDFStatus::failed(PDF_CODE::IO, "the output " + path + " can't be written: " + std::strerror(errno));
    };
    TemporaryFile file(target);
    if (!file.is_open())
        return failure();
    for (const std::string_view piece : pieces) {
        if (!file.write(piece))
            return failure();
    }
    if (!file.set_mode_like(target) || !file.rename_to(target))
        return failure();
    return {};
}
