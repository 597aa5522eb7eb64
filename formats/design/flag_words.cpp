#include "formats/design/flag_words.h"

#include <algorithm>

#include "forms/field.h"
#include "forms/field_kind.h"

std::string PDF_FLAG_WORD::name() const
{
    const auto words = field_flag_words();
    return std::find_if(words.begin(), words.end(), [this](const auto& at) { return at.flag == flag; })->word;
}

std::span<const PDF_FLAG_WORD> settable_flags()
{
    static constexpr PDF_FLAG_WORD WORDS[] = {
        {FIELD_READ_ONLY, "people can't change it"},
        {FIELD_REQUIRED, "it must have a value when the form is submitted"},
        {FIELD_NO_EXPORT, "its value is not submitted"},
        {FIELD_MULTILINE, "text field: several lines"},
        {FIELD_PASSWORD, "text field: the text is not shown"},
        {FIELD_COMB, "text field: as many cells as its maximum length"},
        {FIELD_EDIT, "combo box: any text may be typed in"},
        {FIELD_MULTI_SELECT, "list box: several options may be chosen"},
    };
    return WORDS;
}
