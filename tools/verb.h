// What the verbs of the command share: arguments, opening the document, saying what went wrong.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "document/document.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

enum COMMAND_EXIT : int {
    COMMAND_DONE = 0,
    COMMAND_REFUSED = 1,  // a file or a value was refused
    COMMAND_USAGE = 2,    // wrong usage
    COMMAND_PARTLY = 3,   // done but for some files or rows, which were refused
};

// A word of the command line as it was typed. CLI11 gives some words a meaning of their own ("[a,b]" is two words, "++"
// ends a verb, the name of a verb begins one), which names and values must not have: marked words are plain to it.
struct COMMAND_WORD {
    std::string text;
};

constexpr char COMMAND_WORD_MARK = '\x1f';

// Found by CLI11 for options of this type: removes the mark.
bool lexical_cast(const std::string& input, COMMAND_WORD& output);

// The file that every verb works on.
struct COMMAND_INPUT {
    COMMAND_WORD path;
    COMMAND_WORD password;
};

// The operation that the command line asks for, set while it is parsed; returns a COMMAND_EXIT.
using COMMAND_ACTION = std::function<int()>;

// Each adds its verb to `app`. `action` is borrowed until the command line is parsed.
void add_list_verb(CLI::App& app, COMMAND_ACTION& action);
void add_get_verb(CLI::App& app, COMMAND_ACTION& action);
void add_fill_verb(CLI::App& app, COMMAND_ACTION& action);
void add_calculate_verb(CLI::App& app, COMMAND_ACTION& action);
void add_compare_verb(CLI::App& app, COMMAND_ACTION& action);
void add_reset_verb(CLI::App& app, COMMAND_ACTION& action);
void add_export_verb(CLI::App& app, COMMAND_ACTION& action);
void add_extract_verb(CLI::App& app, COMMAND_ACTION& action);
void add_draw_verb(CLI::App& app, COMMAND_ACTION& action);
void add_add_verb(CLI::App& app, COMMAND_ACTION& action);
void add_move_verb(CLI::App& app, COMMAND_ACTION& action);
void add_copy_verb(CLI::App& app, COMMAND_ACTION& action);
void add_tabs_verb(CLI::App& app, COMMAND_ACTION& action);
void add_remove_verb(CLI::App& app, COMMAND_ACTION& action);
void add_rename_verb(CLI::App& app, COMMAND_ACTION& action);
void add_set_verb(CLI::App& app, COMMAND_ACTION& action);
void add_merge_verb(CLI::App& app, COMMAND_ACTION& action);
void add_join_verb(CLI::App& app, COMMAND_ACTION& action);
void add_actions_verb(CLI::App& app, COMMAND_ACTION& action);

// Makes of an empty `app` the command, as it is parsed and as its help, manual and completions tell it: with all its verbs, or
// with `verb` alone, where that is one, since the others' options would take longer than most of what verbs do.
void describe_command(CLI::App& app, COMMAND_ACTION& action, std::string_view verb = {});

// Adds the file and the options of every verb.
void add_input(CLI::App& verb, COMMAND_INPUT& input);

// Opens the document, or complains and returns false. Says so where the file was repaired.
bool open_document(CPDFDocument& document, const COMMAND_INPUT& input, PDF_LOAD load = PDF_LOAD::WHOLE_FORM);

// Takes the repaired copy of a file that showed damage after it was opened, see CPDFDocument::mend, and says so.
bool mend_document(CPDFDocument& document, const COMMAND_INPUT& input);

// Complains and returns false where the permissions of an encrypted file forbid to fill its form.
bool may_fill(const CPDFDocument& document, const COMMAND_INPUT& input);

// The field that is meant by a full name, a number or a part of a name, see CPDFDocument::find_field. Says so where several
// fields have that name.
CPDFField* find_field(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name, CPDFStatus& why,
                      PDF_FIELD_WORDS words = PDF_FIELD_WORDS::PARTS);

// Says so where several fields have this full name.
void note_same_names(CPDFDocument& document, const COMMAND_INPUT& input, const std::string& name);

// Says so where fields that only pages know were taken for fields of the form.
void note_adopted(const CPDFDocument& document, const COMMAND_INPUT& input);

// Finds the fields meant by these words. Complains about every one that means none, and returns false then.
bool find_fields(CPDFDocument& document, const COMMAND_INPUT& input, const std::vector<COMMAND_WORD>& names,
                 std::vector<CPDFField*>& fields);

// Whoever meets the end of memory goes on with what it has, and takes what it could not read for absent. From then on
// nothing of it is told, written or called done: what follows here and saves throws std::bad_alloc, and the command says
// why. It counts from start_memory, or the start of the thread.
void start_memory();
void need_memory();

// Writes "formwork: FILE: sentence", a line on standard error.
void complain(std::string_view file, std::string_view sentence);

// How a verb ends: put_done, or a complaint about `file` when `status` is a failure. Returns a COMMAND_EXIT.
int end_with(const CPDFStatus& status, std::string_view file);

// What is wrong with the command line.
inline CPDFStatus wrong_usage(std::string sentence)
{
    return CPDFStatus::failed(PDF_CODE::BAD_REQUEST, std::move(sentence));
}

// Complains about a wrong command line; returns COMMAND_USAGE.
int complain_usage(std::string_view sentence);

// Writes the sentence as a note, unless it is empty.
void put_note(const COMMAND_INPUT& input, const std::string& sentence);

// Writes to standard output; put_done flushes it and returns COMMAND_DONE, or complains and returns COMMAND_REFUSED when
// anything could not be written.
void put(std::string_view text);
int put_done();
