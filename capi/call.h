// How every function of the interface runs: what the library answers, or throws, becomes a code and a sentence.
#pragma once

#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "capi/formwork.h"
#include "core/alloc.h"
#include "file/status.h"

// The number that stands for the code of a status.
fw_code code_of(PDF_CODE code);

// Keeps the sentence for fw_error, for this thread. Never throws.
fw_code fail_with(fw_code code, std::string_view sentence) noexcept;
fw_code fail_with_no_memory() noexcept;

inline fw_code bad_argument(std::string_view sentence)
{
    return fail_with(FW_BAD_ARGUMENT, sentence);
}

inline fw_code result_of(const CPDFStatus& status)
{
    return status.ok() ? FW_OK : fail_with(code_of(status.code), status.text);
}

// Runs `operation`, which returns an fw_code. Where memory runs out on the way, FW_NO_MEMORY takes its place: what was made may lack
// a part.
template <typename Operation>
fw_code call(const Operation& operation) noexcept
{
    try {
        const VXFailureCheck memory;
        const fw_code code = operation();
        return memory.failed() ? fail_with_no_memory() : code;
    } catch (const std::bad_alloc&) {
        return fail_with_no_memory();
    } catch (const std::exception& fault) {
        return fail_with(FW_INTERNAL, fault.what());
    } catch (...) {
        return fail_with(FW_INTERNAL, "a fault of the library");
    }
}

// Gives `value` to who asked for it.
template <typename T>
void hand_out(T* out, T value)
{
    if (out)
        *out = value;
}

// The same for text that the caller frees; an empty one is handed out, too.
fw_code hand_out_text(std::string_view first, std::string_view second, char** out, size_t* size);
inline fw_code hand_out_text(std::string_view text, char** out, size_t* size)
{
    return hand_out_text(text, {}, out, size);
}
