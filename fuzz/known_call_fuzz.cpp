// A script. When it is a known call it is run, for a field that has the script as its value and for one with a number.
#include <cstdint>
#include <cstdlib>

#include "script/known_call.h"

namespace {

class SameValues : public CPDFFieldValues {
public:
    void append_values(const std::string& name, std::vector<std::string>& out) const override
    {
        if (!name.empty())
            out.insert(out.end(), {name, "12.5", ""});
    }
};

void run(const KNOWN_CALL& call, std::string value)
{
    FIELD_EVENT event;
    event.value = std::move(value);
    run_known_call(call, event, SameValues());
    if (event.rc != event.message.empty())
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string script(reinterpret_cast<const char*>(data), size);
    const std::optional<KNOWN_CALL> call = read_known_call(script);
    if (!call)
        return 0;
    if (call->arguments.size() > KNOWN_CALL_ARGUMENTS_MAX)
        std::abort();
    run(*call, script);
    run(*call, "-1234.5");
    return 0;
}
