#include "forms/field_kind.h"

#include <cstring>
#include <iterator>

#include "forms/field.h"

namespace {

// A button with both bits is a radio button, as in a reset.
constexpr PDF_FIELD_KIND KINDS[] = {
    {KIND_CONTAINER, FIELD_UNKNOWN, 0, 0, "container", "unknown", "group of fields"},
    {KIND_RADIO, FIELD_BUTTON, FIELD_RADIO, 0, "radio", "button", "radio group"},
    {KIND_PUSH, FIELD_BUTTON, FIELD_PUSH_BUTTON, FIELD_RADIO, "push", "button", "push button"},
    {KIND_CHECK, FIELD_BUTTON, 0, FIELD_RADIO | FIELD_PUSH_BUTTON, "check", "button", "check box"},
    {KIND_TEXT, FIELD_TEXT, 0, 0, "text", "text", "text field"},
    {KIND_COMBO, FIELD_CHOICE, FIELD_COMBO, 0, "combo", "choice", "combo box"},
    {KIND_LIST, FIELD_CHOICE, 0, FIELD_COMBO, "list", "choice", "list box"},
    {KIND_SIGNATURE, FIELD_SIGNATURE, 0, 0, "signature", "signature", "signature field"},
};
static_assert(std::size(KINDS) == KIND_COUNT);

}  // namespace

const PDF_FIELD_KIND& field_kind(int32_t type, uint32_t flags)
{
    for (const PDF_FIELD_KIND& kind : KINDS) {
        if (kind.type == type && (flags & kind.set) == kind.set && (flags & kind.clear) == 0)
            return kind;
    }
    return KINDS[KIND_CONTAINER];
}

const PDF_FIELD_KIND* field_kind(const char* name)
{
    for (const PDF_FIELD_KIND& kind : KINDS) {
        if (std::strcmp(kind.name, name) == 0)
            return &kind;
    }
    return nullptr;
}

bool takes_values(int32_t type, uint32_t flags)
{
    const PDF_FIELD_KIND_ID id = field_kind(type, flags).id;
    return id != KIND_CONTAINER && id != KIND_PUSH && id != KIND_SIGNATURE;
}
