#include "tools/batch/zip_archive.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "tools/batch/archive_library.h"

namespace {
constexpr int BLOCK = 1 << 16;
}  // namespace

ZipArchive::~ZipArchive()
{
    if (!m_archive)
        return;
    const ARCHIVE_LIBRARY& library = archive_library();
    m_is_over = true;  // the library ends the archive now, complete or not
    library.archive_write_free(m_archive);
    library.archive_entry_free(m_entry);
}

CPDFStatus ZipArchive::open(const std::string& path)
{
    m_path = path == "-" ? "standard output" : path;
    m_to_stdout = path == "-";
    const ARCHIVE_LIBRARY& library = archive_library();
    if (!library.problem.empty())
        return CPDFStatus::failed(PDF_CODE::IO, "the archive can't be written: " + library.problem);
    if (CPDFStatus status = m_to_stdout ? CPDFStatus() : m_file.open(path); !status.ok())
        return status;
    m_archive = library.archive_write_new();
    m_entry = library.archive_entry_new();
    // An archive that the library knows to have failed leaves its memory behind, so nothing fails to it.
    const auto write = [](archive*, void* self, const void* bytes, size_t size) -> la_ssize_t {
        static_cast<ZipArchive*>(self)->take({static_cast<const char*>(bytes), size});
        return static_cast<la_ssize_t>(size);
    };
    const bool good =
        m_archive && m_entry && library.archive_write_set_format_zip(m_archive) == ARCHIVE_OK &&
        library.archive_write_set_options(m_archive, "zip:compression=store,zip:hdrcharset=UTF-8") == ARCHIVE_OK &&
        library.archive_write_set_bytes_per_block(m_archive, BLOCK) == ARCHIVE_OK &&
        library.archive_write_set_bytes_in_last_block(m_archive, 1) == ARCHIVE_OK &&
        library.archive_write_open(m_archive, this, nullptr, write, nullptr) == ARCHIVE_OK;
    return good ? CPDFStatus() : failure();
}

CPDFStatus ZipArchive::add(const std::string& name, std::string_view head, std::string_view tail)
{
    const ARCHIVE_LIBRARY& library = archive_library();
    library.archive_entry_clear(m_entry);
    library.archive_entry_set_pathname_utf8(m_entry, name.c_str());
    library.archive_entry_set_filetype(m_entry, AE_IFREG);
    library.archive_entry_set_perm(m_entry, 0644);
    library.archive_entry_set_size(m_entry, static_cast<la_int64_t>(head.size() + tail.size()));
    bool good = library.archive_write_header(m_archive, m_entry) == ARCHIVE_OK;
    for (const std::string_view part : {head, tail}) {
        if (good && !part.empty())
            good =
                library.archive_write_data(m_archive, part.data(), part.size()) == static_cast<la_ssize_t>(part.size());
    }
    return good && is_well() ? CPDFStatus() : failure();
}

CPDFStatus ZipArchive::finish()
{
    if (archive_library().archive_write_close(m_archive) != ARCHIVE_OK || !is_well())
        return failure();
    return m_to_stdout ? CPDFStatus() : m_file.finish();
}

// Called by the library, which no exception may pass.
void ZipArchive::take(std::string_view bytes) noexcept
{
    if (m_is_over || !is_well())
        return;
    try {
        m_problem = put(bytes);
    } catch (const std::bad_alloc&) {
        m_has_no_memory = true;
    }
}

CPDFStatus ZipArchive::put(std::string_view bytes)
{
    if (!m_to_stdout)
        return m_file.write({bytes, -1}, {});
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size())
        return {};
    return CPDFStatus::failed(PDF_CODE::IO, std::string("standard output can't be written: ") + std::strerror(errno));
}

CPDFStatus ZipArchive::failure() const
{
    if (m_has_no_memory)
        throw std::bad_alloc();
    if (!m_problem.ok())
        return m_problem;
    const char* const why = m_archive ? archive_library().archive_error_string(m_archive) : nullptr;
    return CPDFStatus::failed(PDF_CODE::IO, "the archive " + m_path +
                                                " can't be written: " + (why ? why : "there is not enough memory"));
}
