#include "script/form_function.h"

#include <algorithm>
#include <cmath>

#include "script/form_function_internal.h"
#include "script/functions/characters.h"

namespace {

// By name, for a search by halves.
constexpr FORM_FUNCTION FUNCTIONS[] = {
    {"AFDate_Format", date_format},
    {"AFDate_FormatEx", date_format_ex},
    {"AFDate_Keystroke", date_keystroke},
    {"AFDate_KeystrokeEx", date_keystroke_ex},
    {"AFExtractNums", numbers_extracted},
    {"AFMakeNumber", number_made},
    {"AFMergeChange", change_merged},
    {"AFNumber_Format", number_format},
    {"AFNumber_Keystroke", number_keystroke},
    {"AFParseDateEx", date_parsed},
    {"AFPercent_Format", percent_format},
    {"AFPercent_Keystroke", percent_keystroke},
    {"AFRange_Validate", range_validate},
    {"AFSimple", simple},
    {"AFSimple_Calculate", simple_calculate},
    {"AFSpecial_Format", special_format},
    {"AFSpecial_Keystroke", special_keystroke},
    {"AFSpecial_KeystrokeEx", special_keystroke_ex},
    {"AFTime_Format", time_format},
    {"AFTime_FormatEx", date_format_ex},
    {"AFTime_Keystroke", time_keystroke},
    {"AFTime_KeystrokeEx", time_keystroke_ex},
    {"util.printd", date_printed},
    {"util.printf", values_printed},
    {"util.printx", mask_printed},
    {"util.scand", date_scanned},
};
static_assert(std::is_sorted(std::begin(FUNCTIONS), std::end(FUNCTIONS),
                             [](const FORM_FUNCTION& a, const FORM_FUNCTION& b) { return a.name < b.name; }));

}  // namespace

const SCRIPT_VALUE& FORM_CALL::operator[](size_t index) const
{
    static const SCRIPT_VALUE NOTHING;
    return index < arguments.size() ? arguments[index] : NOTHING;
}

std::span<const FORM_FUNCTION> form_functions()
{
    return FUNCTIONS;
}

const FORM_FUNCTION* find_form_function(std::string_view name)
{
    const FORM_FUNCTION* found =
        std::lower_bound(std::begin(FUNCTIONS), std::end(FUNCTIONS), name,
                         [](const FORM_FUNCTION& f, std::string_view n) { return f.name < n; });
    return found != std::end(FUNCTIONS) && found->name == name ? found : nullptr;
}

int int_argument(const SCRIPT_VALUE& value, int low, int high)
{
    const double number = value.number();
    return number > low ? static_cast<int>(std::min<double>(number, high)) : low;
}

std::string merged_value(const FIELD_EVENT& event)
{
    if (event.will_commit)
        return event.value;
    const std::u32string value = characters_of(event.value);
    const size_t begin = event.sel_start < 0 ? 0 : std::min<size_t>(static_cast<size_t>(event.sel_start), value.size());
    const size_t end = event.sel_end < 0 ? value.size() : static_cast<size_t>(event.sel_end);
    const std::u32string_view whole = value;
    return text_of(whole.substr(0, begin)) + event.change + text_of(whole.substr(std::clamp(end, begin, value.size())));
}
