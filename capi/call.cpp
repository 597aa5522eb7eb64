#include "capi/call.h"

#include <cstdlib>

namespace {

constexpr const char* NO_MEMORY = "there is not enough memory";

// Of this thread: a text that is ready where there is no memory for another one.
thread_local std::string t_sentence;
thread_local const char* t_fixed = "";

}  // namespace

fw_code code_of(PDF_CODE code)
{
    switch (code) {
    case PDF_CODE::OK:
        return FW_OK;
    case PDF_CODE::NOT_FOUND:
        return FW_NOT_FOUND;
    case PDF_CODE::IO:
        return FW_IO;
    case PDF_CODE::NOT_PDF:
        return FW_NOT_PDF;
    case PDF_CODE::NO_CATALOG:
        return FW_NO_CATALOG;
    case PDF_CODE::ENCRYPTED:
        return FW_ENCRYPTED;
    case PDF_CODE::DAMAGED:
        return FW_DAMAGED;
    case PDF_CODE::LIMIT:
        return FW_LIMIT;
    case PDF_CODE::NO_FIELD:
        return FW_NO_FIELD;
    case PDF_CODE::WRONG_KIND:
        return FW_WRONG_KIND;
    case PDF_CODE::READ_ONLY:
        return FW_READ_ONLY;
    case PDF_CODE::NOT_PERMITTED:
        return FW_NOT_PERMITTED;
    case PDF_CODE::BAD_EDIT:
        return FW_BAD_EDIT;
    case PDF_CODE::BAD_DATA:
        return FW_BAD_DATA;
    case PDF_CODE::BAD_REQUEST:
        return FW_BAD_REQUEST;
    case PDF_CODE::NO_MEMORY:
        return FW_NO_MEMORY;
    case PDF_CODE::CANCELLED:
        return FW_CANCELLED;
    }
    return FW_INTERNAL;
}

fw_code fail_with(fw_code code, std::string_view sentence) noexcept
{
    try {
        t_sentence = sentence;
        t_fixed = nullptr;
    } catch (...) {
        t_fixed = NO_MEMORY;
    }
    return code;
}

fw_code fail_with_no_memory() noexcept
{
    t_fixed = NO_MEMORY;
    return FW_NO_MEMORY;
}

fw_code hand_out_text(std::string_view first, std::string_view second, char** out, size_t* size)
{
    char* const text = static_cast<char*>(std::malloc(first.size() + second.size() + 1));
    if (!text)
        return fail_with_no_memory();
    first.copy(text, first.size());
    second.copy(text + first.size(), second.size());
    text[first.size() + second.size()] = '\0';
    *out = text;
    hand_out(size, first.size() + second.size());
    return FW_OK;
}

const char* fw_error(void)
{
    return t_fixed ? t_fixed : t_sentence.c_str();
}

void fw_free(void* text)
{
    std::free(text);
}

const char* fw_version(void)
{
    return FORMWORK_VERSION;
}
