#include "document/design/button_action.h"

#include <algorithm>
#include <utility>

#include "document/edit/new_object.h"

namespace {

bool is_url(const std::string& text)
{
    const auto is_bad = [](char c) { return c <= ' ' || c >= '\x7f'; };
    return !text.empty() && std::none_of(text.begin(), text.end(), is_bad);
}

}  // namespace

bool read_action(const std::string& words, PDF_BUTTON_ACTION& out)
{
    // "Flags" of a submit-form action.
    constexpr std::pair<const char*, const char*> SUBMITS[] = {
        {"submit", "4"}, {"submit-fdf", "0"}, {"submit-xfdf", "32"}, {"submit-pdf", "256"}};
    out = {};
    const size_t colon = words.find(':');
    const std::string word = words.substr(0, colon);
    const std::string url = colon == std::string::npos ? "" : words.substr(colon + 1);
    if (words == "reset")
        out.dictionary = "<</S/ResetForm>>";
    else if (words == "print")
        out.dictionary = "<</S/Named/N/Print>>";
    else if (word == "link" && is_url(url))
        out.dictionary = "<</S/URI/URI" + string_syntax(url) + ">>";
    for (const auto& [known, flags] : SUBMITS) {
        if (word == known && is_url(url))
            out.dictionary =
                "<</S/SubmitForm/Flags " + std::string(flags) + "/F<</FS/URL/F" + string_syntax(url) + ">>>>";
    }
    return !out.dictionary.empty() || words == "none";
}
