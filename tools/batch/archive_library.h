// libarchive as a table of functions: its library is loaded when the first archive is written, not with the program.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <string>

#define ARCHIVE_FUNCTIONS(F)                                                                                           \
    F(archive_entry_clear)                                                                                             \
    F(archive_entry_free)                                                                                              \
    F(archive_entry_new)                                                                                               \
    F(archive_entry_set_filetype)                                                                                      \
    F(archive_entry_set_pathname_utf8)                                                                                 \
    F(archive_entry_set_perm)                                                                                          \
    F(archive_entry_set_size)                                                                                          \
    F(archive_error_string)                                                                                            \
    F(archive_write_close)                                                                                             \
    F(archive_write_data)                                                                                              \
    F(archive_write_free)                                                                                              \
    F(archive_write_header)                                                                                            \
    F(archive_write_new)                                                                                               \
    F(archive_write_open)                                                                                              \
    F(archive_write_set_bytes_in_last_block)                                                                           \
    F(archive_write_set_bytes_per_block)                                                                               \
    F(archive_write_set_format_zip)                                                                                    \
    F(archive_write_set_options)

struct ARCHIVE_LIBRARY {
#define ARCHIVE_MEMBER(name) decltype(&::name) name = nullptr;  // NOLINT(bugprone-macro-parentheses): a declaration
    ARCHIVE_FUNCTIONS(ARCHIVE_MEMBER)
#undef ARCHIVE_MEMBER
    std::string problem;  // why it can't be used; empty when it can
};

// The library, loaded by the first call for the life of the program. Any thread may call.
const ARCHIVE_LIBRARY& archive_library();
