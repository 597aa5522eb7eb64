#include "script/form_function_internal.h"
#include "script/functions/mask.h"
#include "script/functions/print.h"

namespace {

SPECIAL_FORM form_argument(const SCRIPT_VALUE& value)
{
    return static_cast<SPECIAL_FORM>(int_argument(value, 0, 3));
}

MASK_PART part_of(const FIELD_EVENT& event)
{
    return event.will_commit ? MASK_PART::WHOLE : MASK_PART::START;
}

void check(FIELD_EVENT& event, const std::string& text, bool good)
{
    if (text.empty() || good)
        return;
    event.rc = false;
    if (event.will_commit)
        event.message = "The value entered does not match the format of the field [ " + event.target + " ]";
}

}  // namespace

// AFSpecial_Format(0 zip code, 1 zip + 4, 2 telephone number, 3 social security number)
SCRIPT_VALUE special_format(FORM_CALL& call)
{
    call.event.value = print_special(call.event.value, form_argument(call[0]));
    return {};
}

// AFSpecial_Keystroke(as AFSpecial_Format)
SCRIPT_VALUE special_keystroke(FORM_CALL& call)
{
    const std::string text = merged_value(call.event);
    check(call.event, text, fits_special(text, form_argument(call[0]), part_of(call.event)));
    return {};
}

// AFSpecial_KeystrokeEx(mask)
SCRIPT_VALUE special_keystroke_ex(FORM_CALL& call)
{
    const std::string text = merged_value(call.event);
    check(call.event, text, fits_mask(text, call[0].text(), part_of(call.event)));
    return {};
}

// AFMergeChange(event)
SCRIPT_VALUE change_merged(FORM_CALL& call)
{
    return {merged_value(call.event)};
}

// util.printf(format, value...)
SCRIPT_VALUE values_printed(FORM_CALL& call)
{
    const SCRIPT_LIST& arguments = call.arguments;
    return {print_values(call[0].text(), {arguments.begin() + !arguments.empty(), arguments.end()})};
}

// util.printx(mask, text)
SCRIPT_VALUE mask_printed(FORM_CALL& call)
{
    return {print_by_mask(call[0].text(), call[1].text())};
}
