#include "tools/extract/spool_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "file/output_file.h"

namespace {

std::FILE* unnamed_file(const std::string& beside)
{
    const size_t slash = beside.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : beside.substr(0, slash + 1);
    const int fd = beside.empty() || beside == "-" ? -1 : ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    return fd < 0 ? std::tmpfile() : ::fdopen(fd, "w+");
}

CPDFStatus failure()
{
    return CPDFStatus::failed(PDF_CODE::IO, std::string("a temporary file can't be written: ") + std::strerror(errno));
}

}  // namespace

SpoolFile::~SpoolFile()
{
    if (m_mapping)
        ::munmap(m_mapping, m_size);
}

CPDFStatus SpoolFile::open(const std::string& beside)
{
    m_file.reset(unnamed_file(beside));
    return m_file ? CPDFStatus() : failure();
}

void SpoolFile::put(std::string_view bytes)
{
    m_size += bytes.size();
    m_good = m_good && std::fwrite(bytes.data(), 1, bytes.size(), m_file.get()) == bytes.size();
}

CPDFStatus SpoolFile::finish(std::string_view& bytes)
{
    if (!m_good || std::fflush(m_file.get()) != 0)
        return failure();
    bytes = {};
    if (m_size == 0)
        return {};
    void* const mapping = ::mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, ::fileno(m_file.get()), 0);
    if (mapping == MAP_FAILED)
        return failure();
    m_mapping = mapping;
    bytes = {static_cast<const char*>(mapping), m_size};
    return {};
}

CPDFStatus SpoolFile::finish_as(const std::string& path)
{
    std::string_view bytes;
    const CPDFStatus status = finish(bytes);
    return status.ok() ? write_file(path, {bytes, ::fileno(m_file.get())}, "") : status;
}
