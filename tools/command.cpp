#include "tools/command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

#include "core/alloc.h"
#include "document/lookup/field_text.h"
#include "tools/help_format.h"
#include "tools/verb.h"

namespace {

std::atomic<void*> g_reserve = nullptr;  // owned

// CLI11 allocates where it must not throw. While one lives, there is memory for that when it has run out; that it has is
// noted then, and ever after: streams keep an exception to themselves.
class Reserve {
public:
    Reserve()
    {
        constexpr size_t SIZE = size_t{1} << 16;
        std::set_new_handler([] {
            vx_note_failure();
            void* const reserve = g_reserve.exchange(nullptr);
            if (!reserve)
                throw std::bad_alloc();
            VXFree(reserve);
        });
        g_reserve = VXAlloc(SIZE);
        need_memory();
    }
    ~Reserve() { VXFree(g_reserve.exchange(nullptr)); }
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;
};

struct COMMAND_VERB {
    const char* name;
    void (*add)(CLI::App& app, COMMAND_ACTION& action);
};

// In the order of the help.
constexpr COMMAND_VERB VERBS[] = {
    {"list", add_list_verb},       {"get", add_get_verb},         {"compare", add_compare_verb},
    {"fill", add_fill_verb},       {"reset", add_reset_verb},     {"calculate", add_calculate_verb},
    {"export", add_export_verb},   {"extract", add_extract_verb}, {"draw", add_draw_verb},
    {"add", add_add_verb},         {"move", add_move_verb},       {"copy", add_copy_verb},
    {"tabs", add_tabs_verb},       {"remove", add_remove_verb},   {"rename", add_rename_verb},
    {"set", add_set_verb},         {"merge", add_merge_verb},     {"join", add_join_verb},
    {"actions", add_actions_verb},
};

// The words in the order that CLI11 wants, last first. All that may be a name, a value or a file is marked; the verb and
// options are not.
std::vector<std::string> words_of(int argc, char** argv)
{
    std::vector<std::string> words;
    bool options_end = false;
    for (int i = 1; i < argc; ++i) {
        std::string word = argv[i];
        const bool is_option = !options_end && word.size() > 1 && word[0] == '-';
        options_end = options_end || word == "--";
        if (i > 1 && !is_option)
            word.insert(word.begin(), COMMAND_WORD_MARK);
        words.push_back(std::move(word));
    }
    std::reverse(words.begin(), words.end());
    return words;
}

// `words` as words_of made them.
int usage_error(const CLI::App& app, const std::vector<std::string>& words, const CLI::ParseError& error)
{
    std::string sentence = error.what();
    std::erase(sentence, COMMAND_WORD_MARK);
    const auto chosen = app.get_subcommands();
    if (chosen.empty()) {
        const bool named = !words.empty() && words.back()[0] != '-';
        sentence = named ? "there is no verb " + in_quotes(words.back()) : "a verb is required";
    }
    const std::string verb = chosen.empty() ? "" : chosen.front()->get_name() + " ";
    return complain_usage(sentence + " (`formwork " + verb + "--help` tells more)");
}

int run(int argc, char** argv)
{
    std::optional<Reserve> reserve(std::in_place);
    CLI::App app;
    COMMAND_ACTION action;
    describe_command(app, action, argc > 1 ? argv[1] : "");
    const std::vector<std::string> words = words_of(argc, argv);
    try {
        app.parse(std::vector<std::string>(words));
    } catch (const CLI::Success& success) {
        app.exit(success);
        return put_done();
    } catch (const CLI::ParseError& error) {
        return usage_error(app, words, error);
    }
    reserve.reset();
    need_memory();
    return action();
}

}  // namespace

void describe_command(CLI::App& app, COMMAND_ACTION& action, std::string_view verb)
{
    app.name("formwork");
    app.description("Shows, reads, fills, exports, edits and draws the forms of PDF files.");
    app.set_version_flag("--version", "formwork " FORMWORK_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<CPDFHelpFormat>());
    app.get_formatter()->label("SUBCOMMAND", "VERB FILE ...");
    app.footer("Exits 0 when done, 1 when a file or a value was refused, 2 for wrong usage, 3\n"
               "when some of many rows or files were refused.");
    const auto* const chosen =
        std::find_if(std::begin(VERBS), std::end(VERBS), [&](const COMMAND_VERB& at) { return verb == at.name; });
    if (chosen != std::end(VERBS))
        chosen->add(app, action);
    else
        std::for_each(std::begin(VERBS), std::end(VERBS), [&](const COMMAND_VERB& at) { at.add(app, action); });
    for (CLI::App* added : app.get_subcommands({}))
        added->group("Verbs");
}

int run_command(int argc, char** argv)
{
    try {
        start_memory();
        return run(argc, argv);
    } catch (...) {  // nothing but memory runs out here
        std::fflush(stdout);
        std::fputs("formwork: there is not enough memory\n", stderr);
        return COMMAND_REFUSED;
    }
}
