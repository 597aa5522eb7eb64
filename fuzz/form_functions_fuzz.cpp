// Lines: the value of a field, what is typed, a format or mask; then numbers. Every function gets them as its arguments in several ways.
#include <cstdint>
#include <cstdlib>

#include "script/form_function.h"

namespace {

constexpr std::string_view TEXT_FUNCTIONS[] = {
    "AFDate_FormatEx", "AFDate_KeystrokeEx", "AFTime_FormatEx", "AFTime_KeystrokeEx", "AFSpecial_KeystrokeEx",
    "AFMakeNumber",    "AFExtractNums",      "AFMergeChange",   "AFParseDateEx",      "util.printf",
    "util.printx",     "util.printd",        "util.scand"};
constexpr std::string_view NUMBER_FUNCTIONS[] = {
    "AFNumber_Format",  "AFNumber_Keystroke", "AFPercent_Format", "AFPercent_Keystroke", "AFDate_Format",
    "AFDate_Keystroke", "AFTime_Format",      "AFTime_Keystroke", "AFSpecial_Format",    "AFSpecial_Keystroke",
    "AFRange_Validate", "AFSimple_Calculate", "AFSimple",         "util.printd",         "util.printf"};

// What any of them may make of inputs that are short.
constexpr size_t RESULT_MAX = 1 << 21;

class NoFields : public CPDFFieldValues {
public:
    void append_values(const std::string& name, std::vector<std::string>& out) const override { out.push_back(name); }
};

std::string_view next_line(std::string_view& text)
{
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

FIELD_EVENT run(std::string_view name, const SCRIPT_LIST& arguments, FIELD_EVENT event)
{
    FORM_CALL call{arguments, event, NoFields()};
    const SCRIPT_VALUE returned = find_form_function(name)->run(call);
    if (returned.text().size() > RESULT_MAX || event.value.size() > RESULT_MAX)
        std::abort();
    return event;
}

// A date that a field takes is shown as one that it takes, too, and shows in the same way.
void check_date(const std::string& format, const FIELD_EVENT& event)
{
    if (event.value.empty() || !run("AFDate_KeystrokeEx", {{format}}, event).rc)
        return;
    const FIELD_EVENT once = run("AFDate_FormatEx", {{format}}, event);
    if (!once.value.empty() && run("AFDate_FormatEx", {{format}}, once).value != once.value)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string_view text(reinterpret_cast<const char*>(data), size);
    FIELD_EVENT event;
    event.value = next_line(text);
    event.change = next_line(text);
    const std::string format(next_line(text));
    SCRIPT_LIST numbers;
    while (!text.empty() && numbers.size() < 10)
        numbers.push_back({SCRIPT_VALUE{std::string(next_line(text))}.number()});
    event.sel_start = numbers.empty() ? -1 : static_cast<int>(numbers.size());
    for (const bool commit : {true, false}) {
        event.will_commit = commit;
        for (const std::string_view name : TEXT_FUNCTIONS) {
            run(name, {{format}, {event.value}}, event);
            run(name, {{event.value}, {format}, {event.change}}, event);
        }
        for (const std::string_view name : NUMBER_FUNCTIONS) {
            run(name, numbers, event);
            run(name, {{std::string("SUM")}, {SCRIPT_LIST{{format}, {event.value}}}}, event);
        }
    }
    event.will_commit = true;
    for (const char* full : {"mm/dd/yyyy", "d-mmm-yyyy HH:MM:ss", "yyyymmdd", "dddd, mmmm dd, yyyy h:MM:ss tt"})
        check_date(full, event);
    return 0;
}
