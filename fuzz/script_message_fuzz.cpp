// The bytes of one message, read as each of its kinds. What reads well is written as the same bytes, but for answers, whose texts
// are made well-formed.
#include <cstdint>
#include <cstdlib>

#include "script/sandbox/message.h"

namespace {

void check_same(const std::string& written, std::string_view read)
{
    if (written.size() < SCRIPT_SIZE_BYTES || std::string_view(written).substr(SCRIPT_SIZE_BYTES) != read)
        std::abort();
}

// An answer that was read once is well-formed and stays as it is.
void check_answer(std::string_view message)
{
    SCRIPT_ANSWER answer;
    if (!read_message(message, answer))
        return;
    const std::string once = write_message(answer);
    SCRIPT_ANSWER again;
    if (!read_message(std::string_view(once).substr(SCRIPT_SIZE_BYTES), again))
        std::abort();
    check_same(write_message(again), std::string_view(once).substr(SCRIPT_SIZE_BYTES));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view message(reinterpret_cast<const char*>(data), size);
    check_answer(message);
    std::string_view rest = message;
    const std::optional<SCRIPT_REQUEST> request = read_request(rest);
    SCRIPT_DOCUMENT document;
    if (request == SCRIPT_REQUEST::LOAD && read_message(rest, document))
        check_same(write_message(*request, document), message);
    SCRIPT_RUN run;
    if (request == SCRIPT_REQUEST::RUN && read_message(rest, run))
        check_same(write_message(*request, run), message);
    return 0;
}
