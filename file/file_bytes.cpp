#include "file/file_bytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "file/descriptor.h"

namespace {

// File positions are 32 bits wide in the object store.
constexpr uint64_t LARGEST_FILE = UINT32_MAX;

CPDFStatus io_failure(const char* what)
{
    return CPDFStatus::failed(PDF_CODE::IO, std::string(what) + ": " + std::strerror(errno));
}

}  // namespace

CPDFFileBytes::~CPDFFileBytes()
{
    if (m_mapping)
        ::munmap(m_mapping, m_size);
    if (m_fd >= 0)
        ::close(m_fd);
}

void CPDFFileBytes::take(std::vector<uint8_t> bytes)
{
    m_held = std::move(bytes);
    m_data = m_held.data();
    m_size = m_held.size();
}

void CPDFFileBytes::borrow(const uint8_t* data, size_t size)
{
    m_data = data;
    m_size = size;
}

CPDFStatus CPDFFileBytes::open(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0)
        return open(fd);
    if (errno == ENOENT || errno == ENOTDIR)
        return CPDFStatus::failed(PDF_CODE::NOT_FOUND, "there is no such file");
    return io_failure("the file can't be opened");
}

CPDFStatus CPDFFileBytes::open(int fd)
{
    CPDFDescriptor file(fd);
    struct stat info = {};
    if (::fstat(file.get(), &info) != 0)
        return io_failure("the file can't be read");
    if (S_ISDIR(info.st_mode))
        return CPDFStatus::failed(PDF_CODE::IO, "this is a folder, not a file");
    if (static_cast<uint64_t>(info.st_size) > LARGEST_FILE)
        return CPDFStatus::failed(PDF_CODE::LIMIT, "files larger than 4 GiB are not supported");
    if (!S_ISREG(info.st_mode) || info.st_size == 0)
        return read_all(file.get());
    const auto size = static_cast<size_t>(info.st_size);
    void* mapping = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (mapping == MAP_FAILED)
        return read_all(file.get());
    m_mapping = mapping;
    m_fd = file.release();
    m_data = static_cast<const uint8_t*>(mapping);
    m_size = size;
    return {};
}

CPDFStatus CPDFFileBytes::read_all(int fd)
{
    constexpr size_t CHUNK = size_t{1} << 16;
    std::vector<uint8_t> bytes;
    for (;;) {
        const size_t size = bytes.size();
        if (size > LARGEST_FILE)
            return CPDFStatus::failed(PDF_CODE::LIMIT, "files larger than 4 GiB are not supported");
        bytes.resize(size + CHUNK);
        const ssize_t got = ::read(fd, bytes.data() + size, CHUNK);
        if (got < 0 && errno == EINTR) {
            bytes.resize(size);
            continue;
        }
        if (got < 0)
            return io_failure("the file can't be read");
        bytes.resize(size + static_cast<size_t>(got));
        if (got == 0)
            break;
    }
    take(std::move(bytes));
    return {};
}
