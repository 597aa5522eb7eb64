#include "tools/list/field_words.h"

#include <algorithm>
#include <vector>

#include "core/limits.h"
#include "document/document.h"
#include "document/lookup/field_options.h"
#include "document/lookup/field_text.h"
#include "forms/field.h"
#include "forms/field_inherit.h"
#include "forms/field_kind.h"

namespace {

constexpr int32_t MOST_WORDS = 40;

void append_word(std::string& list, const std::string& word)
{
    list += list.empty() ? word : ", " + word;
}

// A word that fill takes, and what else it is known by.
std::string word_and_other(const std::string& word, const std::string& other)
{
    return other.empty() || other == word ? in_quotes(word) : in_quotes(word) + " (" + other + ")";
}

void append_rest(std::string& list, int32_t count)
{
    if (count > MOST_WORDS)
        append_word(list, "and " + std::to_string(count - MOST_WORDS) + " more");
}

std::string text_words(CPDFDocument& document, const CPDFField& field)
{
    const uint32_t flags = effective_flags(field);
    const int32_t most = max_length(field);
    std::string words = flags & FIELD_MULTILINE ? "text of several lines" : "text";
    if (most > 0)
        words += ", at most " + std::to_string(most) + (most == 1 ? " character" : " characters");
    if (most > 0 && (flags & FIELD_COMB))
        words += ", a cell for each";
    if (const std::string format = document.format_words(field); !format.empty())
        words += ", " + format;
    return words;
}

std::string state_words(CPDFDocument& document, const CPDFField& field)
{
    std::string list = "\"Off\"";
    std::vector<std::string> known;
    for (const PDF_BUTTON_CHOICE& choice : document.choices_of(field)) {
        std::string word = word_and_other(utf8_of_name(choice.state), choice.export_value);
        if (std::find(known.begin(), known.end(), word) == known.end() && known.size() < MOST_WORDS)
            append_word(list, known.emplace_back(std::move(word)));
    }
    return list;
}

std::string option_words(CPDFDocument& document, const CPDFField& field, size_t& listed)
{
    const CPDFFieldOptions options(field);
    std::string list;
    for (int32_t i = 0; i < std::min(options.count(), MOST_WORDS) && listed <= LIMIT_LISTED_OPTIONS; ++i) {
        const std::string value = options.value(i);
        const std::string text = options.text(i);
        listed += value.size() + text.size();
        append_word(list, word_and_other(value, text));
    }
    append_rest(list, options.count());
    const uint32_t flags = effective_flags(field);
    const bool combo = field_kind(field).id == KIND_COMBO;
    if (combo && (flags & FIELD_EDIT))
        append_word(list, options.count() ? "or any text" : "any text");
    if (!combo && (flags & FIELD_MULTI_SELECT))
        list = "any of " + list;
    if (const std::string format = combo ? document.format_words(field) : ""; !format.empty())
        append_word(list, format);
    return list;
}

}  // namespace

std::string flag_words(const CPDFField& field)
{
    const PDF_FIELD_KIND& kind = field_kind(field);
    const uint32_t flags = effective_flags(field);
    std::string words;
    for (const PDF_FIELD_FLAG_WORD& at : field_flag_words()) {
        if ((flags & at.flag) && at.has_kind(kind))
            words.append(words.empty() ? "" : " ").append(at.word);
    }
    return words;
}

std::string taken_words(CPDFDocument& document, const CPDFField& field, size_t& listed)
{
    switch (field_kind(field).id) {
    case KIND_TEXT:
        return text_words(document, field);
    case KIND_CHECK:
    case KIND_RADIO:
        return state_words(document, field);
    case KIND_COMBO:
    case KIND_LIST:
        return option_words(document, field, listed);
    default:
        return {};
    }
}
