// qpdf as a table of functions: its library is loaded when the first damaged file needs it, not with the program.
#pragma once

#include <qpdf/qpdf-c.h>

#include <string>

#define QPDF_FUNCTIONS(F)                                                                                              \
    F(qpdf_get_buffer)                                                                                                 \
    F(qpdf_get_buffer_length)                                                                                          \
    F(qpdf_get_error)                                                                                                  \
    F(qpdf_get_error_code)                                                                                             \
    F(qpdf_get_error_message_detail)                                                                                   \
    F(qpdf_init)                                                                                                       \
    F(qpdf_init_write_memory)                                                                                          \
    F(qpdf_is_encrypted)                                                                                               \
    F(qpdf_read_memory)                                                                                                \
    F(qpdf_set_attempt_recovery)                                                                                       \
    F(qpdf_set_compress_streams)                                                                                       \
    F(qpdf_set_decode_level)                                                                                           \
    F(qpdf_set_deterministic_ID)                                                                                       \
    F(qpdf_set_object_stream_mode)                                                                                     \
    F(qpdf_set_preserve_encryption)                                                                                    \
    F(qpdf_set_stream_data_mode)                                                                                       \
    F(qpdf_set_suppress_warnings)                                                                                      \
    F(qpdf_silence_errors)                                                                                             \
    F(qpdf_write)

struct QPDF_LIBRARY {
#define QPDF_MEMBER(name) decltype(&::name) name = nullptr;  // NOLINT(bugprone-macro-parentheses): a declaration
    QPDF_FUNCTIONS(QPDF_MEMBER)
#undef QPDF_MEMBER
    std::string problem;  // why it can't be used; empty when it can
};

// The library, loaded by the first call for the life of the program. Any thread may call.
const QPDF_LIBRARY& qpdf_library();
