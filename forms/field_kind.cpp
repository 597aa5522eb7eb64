#include "forms/field_kind.h"

#include <cstring>
#include <iterator>

#include "forms/field.h"

namespace {

// A button with both bits is a radio button, as in a reset.
constexpr PDF_FIELD_KIND KINDS[] = {
    {KIND_CONTAINER, FIELD_UNKNOWN, nullptr, 0, 0, false, "container", "unknown", "group of fields"},
    {KIND_RADIO, FIELD_BUTTON, "Btn", FIELD_RADIO, 0, true, "radio", "button", "radio group"},
    {KIND_PUSH, FIELD_BUTTON, "Btn", FIELD_PUSH_BUTTON, FIELD_RADIO, false, "push", "button", "push button"},
    {KIND_CHECK, FIELD_BUTTON, "Btn", 0, FIELD_RADIO | FIELD_PUSH_BUTTON, true, "check", "button", "check box"},
    {KIND_TEXT, FIELD_TEXT, "Tx", 0, 0, true, "text", "text", "text field"},
    {KIND_COMBO, FIELD_CHOICE, "Ch", FIELD_COMBO, 0, true, "combo", "choice", "combo box"},
    {KIND_LIST, FIELD_CHOICE, "Ch", 0, FIELD_COMBO, true, "list", "choice", "list box"},
    {KIND_SIGNATURE, FIELD_SIGNATURE, "Sig", 0, 0, false, "signature", "signature", "signature field"},
};
static_assert(std::size(KINDS) == KIND_COUNT);

constexpr uint32_t ALL_KINDS = ~0U;
constexpr uint32_t BUTTON = 1U << KIND_RADIO | 1U << KIND_PUSH | 1U << KIND_CHECK;
constexpr uint32_t TEXT = 1U << KIND_TEXT;
constexpr uint32_t COMBO = 1U << KIND_COMBO;
constexpr uint32_t LIST = 1U << KIND_LIST;

constexpr PDF_FIELD_FLAG_WORD FLAG_WORDS[] = {
    {"read-only", FIELD_READ_ONLY, ALL_KINDS},
    {"required", FIELD_REQUIRED, ALL_KINDS},
    {"no-export", FIELD_NO_EXPORT, ALL_KINDS},
    {"multiline", FIELD_MULTILINE, TEXT},
    {"password-field", FIELD_PASSWORD, TEXT},
    {"file-select", FIELD_FILE_SELECT, TEXT},
    {"edit", FIELD_EDIT, COMBO},
    {"sorted", FIELD_SORT, COMBO | LIST},
    {"multi-select", FIELD_MULTI_SELECT, LIST},
    {"no-spell-check", FIELD_NO_SPELL_CHECK, TEXT | COMBO | LIST},
    {"no-scroll", FIELD_NO_SCROLL, TEXT},
    {"comb", FIELD_COMB, TEXT},
    {"rich-text", FIELD_RICH_TEXT, TEXT},
    {"no-toggle-to-off", FIELD_NO_TOGGLE_TO_OFF, BUTTON},
    {"in-unison", FIELD_RADIOS_IN_UNISON, BUTTON},
    {"commit-on-change", FIELD_COMMIT_ON_CHANGE, COMBO | LIST},
};

}  // namespace

const PDF_FIELD_KIND& field_kind(PDF_FIELD_KIND_ID id)
{
    return KINDS[id];
}

const PDF_FIELD_KIND& field_kind(int32_t type, uint32_t flags)
{
    for (const PDF_FIELD_KIND& kind : KINDS) {
        if (kind.type == type && (flags & kind.set) == kind.set && (flags & kind.clear) == 0)
            return kind;
    }
    return KINDS[KIND_CONTAINER];
}

const PDF_FIELD_KIND& field_kind(const CPDFField& field)
{
    return field_kind(field.m_type, field.m_flags);
}

const PDF_FIELD_KIND* field_kind(const char* name)
{
    for (const PDF_FIELD_KIND& kind : KINDS) {
        if (std::strcmp(kind.name, name) == 0)
            return &kind;
    }
    return nullptr;
}

int32_t field_type(const char* type_key, int32_t otherwise)
{
    for (const PDF_FIELD_KIND& kind : KINDS) {
        if (type_key && kind.type_key && std::strcmp(kind.type_key, type_key) == 0)
            return kind.type;
    }
    return otherwise;
}

std::span<const PDF_FIELD_FLAG_WORD> field_flag_words()
{
    return FLAG_WORDS;
}
