// The formwork command: reads the command line and runs the verb it names.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>

#include "document/lookup/field_text.h"
#include "file/output_file.h"
#include "tools/verb.h"

namespace {

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
    CLI::App app("Shows, reads, fills, exports, edits and draws the forms of PDF files.", "formwork");
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "VERB FILE ...");
    app.footer("Exits 0 when done, 1 when a file or a value was refused, 2 for a wrong command line.");
    COMMAND_ACTION action;
    add_list_verb(app, action);
    add_get_verb(app, action);
    add_fill_verb(app, action);
    add_reset_verb(app, action);
    add_export_verb(app, action);
    add_draw_verb(app, action);
    add_add_verb(app, action);
    add_remove_verb(app, action);
    add_rename_verb(app, action);
    add_set_verb(app, action);
    add_actions_verb(app, action);
    for (CLI::App* verb : app.get_subcommands({}))
        verb->group("Verbs");
    const std::vector<std::string> words = words_of(argc, argv);
    try {
        app.parse(std::vector<std::string>(words));
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return usage_error(app, words, error);
    }
    return action();
}

// Takes away what a signal would leave and lets it end the program.
extern "C" void clean_up(int number)
{
    remove_partial_outputs();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void clean_up_at_signals()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, clean_up) == SIG_IGN)
            std::signal(number, SIG_IGN);  // as nohup has it
    }
}

}  // namespace

int main(int argc, char** argv)
{
    clean_up_at_signals();
    try {
        return run(argc, argv);
    } catch (...) {  // nothing but memory runs out here
        std::fputs("formwork: there is not enough memory\n", stderr);
        return COMMAND_REFUSED;
    }
}
