#include "tools/edit/edit_verb.h"

#include <CLI/CLI.hpp>
#include <charconv>

#include "document/lookup/field_text.h"
#include "tools/terminal_text.h"

void add_edit_options(CLI::App& verb, EDIT_ARGUMENTS& arguments)
{
    add_output(verb, arguments.output);
    verb.add_flag("--force", arguments.force, "change what signatures or permissions forbid, too");
}

int edit_file(const EDIT_ARGUMENTS& arguments,
              const std::function<std::vector<CPDFStatus>(CPDFDocument& document)>& change)
{
    if (const CPDFStatus usage = check_output(arguments.input, arguments.output); !usage.ok())
        return complain_usage(usage.text);
    const std::string& path = arguments.input.path.text;
    CPDFDocument document;
    if (!open_document(document, arguments.input))
        return COMMAND_REFUSED;
    document.set_drawing(arguments.output.drawing());
    std::vector<CPDFStatus> statuses;
    do
        statuses = change(document);
    while (mend_document(document, arguments.input));
    bool refused = false;
    for (const CPDFStatus& status : statuses) {
        if (!status.ok())
            complain(path, status.text);
        refused = refused || !status.ok();
    }
    if (refused)
        return COMMAND_REFUSED;
    if (document.has_xfa())
        complain(path, "note: the form also has XFA data, which stay as they are");
    return end_with(save_output(document, arguments.input, arguments.output), path);
}

namespace {

// "X,Y,W,H" in points.
bool read_rect(std::string_view text, PDF_RECT& out)
{
    double* const parts[] = {&out.x, &out.y, &out.width, &out.height};
    const char* at = text.data();
    const char* const end = text.data() + text.size();
    for (double* part : parts) {
        if (part != parts[0] && (at == end || *at++ != ','))
            return false;
        const std::from_chars_result result = std::from_chars(at, end, *part, std::chars_format::fixed);
        if (result.ec != std::errc() || !(*part >= -1e6 && *part <= 1e6))
            return false;
        at = result.ptr;
    }
    return at == end;
}

}  // namespace

CLI::Option* add_place_options(CLI::App& verb, PLACE_ARGUMENTS& arguments)
{
    verb.add_option("--page", arguments.page, "the page, counted from 1, of rectangles without one")->option_text("N");
    return verb.add_option("--rect", arguments.rects, "where it stands; again for more widgets")
        ->option_text("[PAGE:]X,Y,W,H")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CPDFStatus read_page(const PLACE_ARGUMENTS& arguments, int32_t& page)
{
    const std::string& text = arguments.page.text;
    const bool good = text.empty() || read_count(text, page);
    return good ? CPDFStatus() : wrong_usage(in_quotes(text) + " is no page number");
}

CPDFStatus read_places(const PLACE_ARGUMENTS& arguments, int32_t page, std::vector<PDF_PLACE>& places)
{
    if (CPDFStatus usage = read_page(arguments, page); !usage.ok())
        return usage;
    for (const COMMAND_WORD& word : arguments.rects) {
        PDF_PLACE& place = places.emplace_back();
        place.page = page;
        const size_t colon = word.text.find(':');
        const bool paged = colon != std::string::npos;
        if ((paged && !read_count(word.text.substr(0, colon), place.page)) ||
            !read_rect(std::string_view(word.text).substr(paged ? colon + 1 : 0), place.rect))
            return wrong_usage(in_quotes(word.text) + " is no rectangle: give X,Y,WIDTH,HEIGHT in points, or " +
                               "PAGE:X,Y,WIDTH,HEIGHT");
    }
    return {};
}

bool read_count(const std::string& text, int32_t& out)
{
    constexpr int32_t MOST = 1000000000;
    const char* end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, out);
    return result.ec == std::errc() && result.ptr == end && out >= 0 && out <= MOST;
}

void add_change_options(CLI::App& verb, CHANGE_ARGUMENTS& arguments)
{
    verb.add_option("--max-length", arguments.max_length, "text field: the most characters it takes")->option_text("N");
    verb.add_option("--option", arguments.options, "combo or list box: an option and the text it shows; again for more")
        ->option_text("VALUE[=TEXT]")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb.add_option("--default", arguments.defaults,
                    "what a reset brings back; again for a list box that takes several")
        ->option_text("VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CPDFStatus read_change(const CHANGE_ARGUMENTS& arguments, PDF_FIELD_CHANGE& change)
{
    for (const auto* words : {&arguments.options, &arguments.defaults}) {
        for (const COMMAND_WORD& word : *words) {
            if (!is_utf8(word.text))
                return wrong_usage(in_quotes(word.text) + " is not UTF-8");
        }
    }
    if (const std::string& text = arguments.max_length.text; !text.empty()) {
        change.max_length = 0;
        if (text != "none" && !read_count(text, *change.max_length))
            return wrong_usage(in_quotes(text) + " is no number of characters");
    }
    if (!arguments.options.empty())
        change.options.emplace();
    for (const COMMAND_WORD& word : arguments.options) {
        const size_t at = word.text.find('=');
        change.options->push_back({word.text.substr(0, at), at == std::string::npos ? "" : word.text.substr(at + 1)});
    }
    std::vector<std::string> values;
    for (const COMMAND_WORD& word : arguments.defaults)
        values.push_back(word.text);
    if (values.size() == 1)
        change.default_value = values[0];
    else if (!values.empty())
        change.default_value = values;
    return {};
}
