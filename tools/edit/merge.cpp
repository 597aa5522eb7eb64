#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "document/lookup/field_text.h"
#include "tools/save_output.h"
#include "tools/verb.h"

namespace {

struct MERGE_ARGUMENTS {
    std::vector<COMMAND_WORD> paths;
    COMMAND_WORD password;
    OUTPUT_ARGUMENTS output;
    COMMAND_WORD same_names{"refuse"};
    bool force = false;

    COMMAND_INPUT input(size_t index) const { return {paths[index], password}; }
    PDF_EDIT how() const { return force ? PDF_EDIT::FORCE : PDF_EDIT::RESPECT_SIGNATURES; }
};

bool read_same_names(const std::string& word, PDF_SAME_NAMES& out)
{
    constexpr std::pair<const char*, PDF_SAME_NAMES> WORDS[] = {
        {"refuse", PDF_SAME_NAMES::REFUSE}, {"rename", PDF_SAME_NAMES::RENAME}, {"join", PDF_SAME_NAMES::JOIN}};
    for (const auto& [name, value] : WORDS) {
        if (word == name) {
            out = value;
            return true;
        }
    }
    return false;
}

bool append(CPDFDocument& document, const MERGE_ARGUMENTS& arguments, size_t index, PDF_SAME_NAMES names)
{
    const COMMAND_INPUT input = arguments.input(index);
    CPDFDocument other;
    if (!open_document(other, input))
        return false;
    std::vector<std::string> notes;
    CPDFStatus status = document.append(other, names, arguments.how(), &notes);
    if (status.code == PDF_CODE::BAD_EDIT && names == PDF_SAME_NAMES::REFUSE)
        status.text += "; --same-names rename or join takes them";
    if (!status.ok())
        complain(input.path.text, status.text);
    for (const std::string& note : notes)
        complain(input.path.text, "note: " + note);
    note_adopted(other, input);
    note_drawing(other, input);
    return status.ok();
}

int merge(const MERGE_ARGUMENTS& arguments)
{
    PDF_SAME_NAMES names = PDF_SAME_NAMES::REFUSE;
    if (!read_same_names(arguments.same_names.text, names))
        return complain_usage("--same-names is " + in_quotes(arguments.same_names.text) +
                              "; it takes refuse, rename or join");
    for (const COMMAND_WORD& path : arguments.paths) {
        if (is_same_file(arguments.output.output.text, path.text))
            return complain_usage(in_quotes(path.text) + " is an input and can't be the output");
    }
    CPDFDocument document;
    if (!open_document(document, arguments.input(0)))
        return COMMAND_REFUSED;
    if (const CPDFStatus status = document.check_append(arguments.how()); !status.ok())
        return end_with(status, arguments.paths[0].text);
    for (size_t i = 1; i < arguments.paths.size(); ++i) {
        if (!append(document, arguments, i, names))
            return COMMAND_REFUSED;
    }
    return end_with(save_output(document, arguments.input(0), arguments.output), arguments.output.output.text);
}

}  // namespace

void add_merge_verb(CLI::App& app, COMMAND_ACTION& action)
{
    const auto arguments = std::make_shared<MERGE_ARGUMENTS>();
    CLI::App& verb = *app.add_subcommand("merge", "Makes one document of several, with all pages and all fields");
    verb.add_option("FILE", arguments->paths, "the PDF files, two or more, in their order")
        ->required()
        ->expected(2, 1 << 20)
        ->option_text("...");
    verb.add_option("--password", arguments->password, "password of those that are protected")->option_text("TEXT");
    verb.add_option("-o,--output", arguments->output.output, "where to save; - is standard output")
        ->required()
        ->option_text("OUT");
    verb.add_option("--same-names", arguments->same_names, "for fields of one name: refuse, rename or join")
        ->option_text("WHAT");
    verb.add_flag("--force", arguments->force, "merge what signatures or permissions forbid, too");
    verb.footer("refuse  nothing is written (the default)\n"
                "rename  the later field gets a number: city_2\n"
                "join    one field shows in both places; kinds must agree, and values must\n"
                "        not contradict. What the first says of itself holds.\n"
                "Groups of one name become one group. Scripts and actions that name a field\n"
                "are not changed. XFA data are dropped, and tags of all files but the first.");
    verb.callback([arguments, &action] { action = [arguments] { return merge(*arguments); }; });
}
